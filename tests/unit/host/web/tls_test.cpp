#include "host/web/tls.h"
#include "support/certificate.h"
#include "support/process.h"
#include "web/server_fixture.h"

#include <zarn/configuration/error.h>

#include <boost/asio/connect.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/write.hpp>
#include <boost/json/parse.hpp>
#include <gmock/gmock.h>
#include <openssl/ssl.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace zarn::host::web {
namespace {

using boost::asio::ip::tcp;
using test::Certificate;
using test::TemporaryFolder;
using testing::AllOf;
using testing::HasSubstr;
namespace ssl = boost::asio::ssl;

std::string GetError(std::string const& certificate, std::string const& key) {
    try {
        MakeTlsContext(certificate, key);
        return "";
    } catch (std::runtime_error const& error) {
        return error.what();
    }
}

TEST(Tls, AcceptsACertificateWithItsKey) {
    TemporaryFolder const folder;
    Certificate const files(folder);
    EXPECT_EQ(GetError(files.certificate, files.key), "");
}

TEST(Tls, NamesTheFileThatCannotBeUsed) {
    TemporaryFolder const folder;
    Certificate const files(folder);
    auto const garbage = folder.Write("garbage", "no PEM");
    EXPECT_THAT(GetError(folder / "none", files.key),
                AllOf(HasSubstr("settings.tls.certificate: "), HasSubstr("/none"), HasSubstr("No such file")));
    EXPECT_THAT(GetError(garbage, files.key), AllOf(HasSubstr("settings.tls.certificate: "), HasSubstr("/garbage")));
    EXPECT_THAT(GetError(files.certificate, garbage),
                AllOf(HasSubstr("settings.tls.private_key: "), HasSubstr("/garbage")));
}

TEST(TlsSettings, NameBothFilesOrNone) {
    auto const root = std::make_shared<configuration::node::Root>();
    root->Schema(MakeTlsSchemas());
    auto const read = [&](char const* json) {
        root->FromJson(boost::json::parse(json));
        return ReadTls(*root);
    };
    EXPECT_EQ(read("{}"), nullptr);
    EXPECT_THROW(read(R"({"settings": {"tls": {"certificate": "a"}}})"), configuration::Error);
    EXPECT_THROW(read(R"({"settings": {"tls": {"private_key": "b"}}})"), configuration::Error);
    TemporaryFolder const folder;
    Certificate const files(folder);
    EXPECT_NE(read((R"({"settings": {"tls": {"certificate": ")" + files.certificate + R"(", "private_key": ")" +
                    files.key + R"("}}})")
                       .c_str()),
              nullptr);
}

TEST(Tls, RefusesAKeyOfAnotherCertificate) {
    TemporaryFolder const folder;
    Certificate const one(folder, "one");
    Certificate const two(folder, "two");
    EXPECT_THAT(GetError(one.certificate, two.key),
                AllOf(HasSubstr("settings.tls.private_key: "), HasSubstr("two.key"), HasSubstr("mismatch")));
}

TEST(Tls, RefusesAKeyOfAnotherType) {
    TemporaryFolder const folder;
    Certificate const files(folder);
    test::Process openssl({"openssl", "genrsa", "-out", folder / "other", "2048"});
    ASSERT_EQ(openssl.Wait(std::chrono::seconds(60)), 0);
    EXPECT_THAT(GetError(files.certificate, folder / "other"),
                AllOf(HasSubstr("/other"), HasSubstr("does not belong")));
}

TEST(Tls, RefusesAnEncryptedKey) {
    TemporaryFolder const folder;
    Certificate const files(folder);
    test::Process openssl(
        {"openssl", "ec", "-aes128", "-passout", "pass:abcd", "-in", files.key, "-out", folder / "locked"});
    ASSERT_EQ(openssl.Wait(std::chrono::seconds(60)), 0);
    EXPECT_THAT(GetError(files.certificate, folder / "locked"), HasSubstr("/locked"));
}

/// A TLS server on loopback and its clients.
class TlsServerTest : public ServerTest {
protected:
    TlsServerTest() { Start({}, MakeTlsContext(files.certificate, files.key)); }

    /// The status line of the response over TLS; throws when the connection fails.
    std::string Ask(int version) const {
        boost::asio::io_context client;
        ssl::context context(ssl::context::tls_client);
        SSL_CTX_set_security_level(context.native_handle(), 0);
        SSL_CTX_set_min_proto_version(context.native_handle(), version);
        SSL_CTX_set_max_proto_version(context.native_handle(), version);
        context.load_verify_file(files.certificate);
        context.set_verify_mode(ssl::verify_peer);
        ssl::stream<tcp::socket> stream(client, context);
        stream.next_layer().connect({boost::asio::ip::address_v4::loopback(), port});
        stream.handshake(ssl::stream_base::client);
        boost::asio::write(stream, boost::asio::buffer(Echo()));
        std::string text;
        boost::asio::read_until(stream, boost::asio::dynamic_buffer(text), "\r\n");
        return text.substr(0, text.find("\r\n"));
    }

    TemporaryFolder folder;
    Certificate files{folder};
};

TEST_F(TlsServerTest, SpeaksTlsOneTwoAndOneThree) {
    EXPECT_EQ(Ask(TLS1_2_VERSION), "HTTP/1.1 200 OK");
    EXPECT_EQ(Ask(TLS1_3_VERSION), "HTTP/1.1 200 OK");
}

TEST_F(TlsServerTest, SpeaksNoOlderVersion) { EXPECT_THROW(Ask(TLS1_1_VERSION), boost::system::system_error); }

TEST_F(TlsServerTest, ClosesAConnectionWithoutTls) {
    auto connection = Connect();
    connection.Send(Echo());
    connection.ReadAll(); // an alert at most
    EXPECT_TRUE(AwaitConnections(0));
}

TEST_F(TlsServerTest, ClosesASilentConnection) {
    server->SetLimits({.headerTime = std::chrono::seconds(1)});
    auto connection = Connect();
    EXPECT_TRUE(connection.IsClosedWithin(Patience));
}

TEST_F(TlsServerTest, AppliesANewCertificateAtRunTime) {
    files = Certificate(folder, "renewed");
    EXPECT_THROW(Ask(TLS1_3_VERSION), boost::system::system_error);
    server->SetTls(MakeTlsContext(files.certificate, files.key));
    EXPECT_EQ(Ask(TLS1_3_VERSION), "HTTP/1.1 200 OK");
}

TEST_F(TlsServerTest, SendsCloseNotify) {
    boost::asio::io_context client;
    ssl::context context(ssl::context::tls_client);
    ssl::stream<tcp::socket> stream(client, context);
    stream.next_layer().connect({boost::asio::ip::address_v4::loopback(), port});
    stream.handshake(ssl::stream_base::client);
    boost::asio::write(stream, boost::asio::buffer(Echo("a", "Connection: close\r\n")));
    std::string text;
    boost::system::error_code error;
    boost::asio::read(stream, boost::asio::dynamic_buffer(text), error);
    EXPECT_THAT(text, testing::StartsWith("HTTP/1.1 200 OK"));
    EXPECT_EQ(error, boost::asio::error::eof) << error.message();
}

} // namespace
} // namespace zarn::host::web
