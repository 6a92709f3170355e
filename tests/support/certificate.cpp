#include "support/certificate.h"

#include "support/process.h"

#include <chrono>
#include <stdexcept>
#include <vector>

namespace zarn::test {
namespace {

void Run(std::vector<std::string> const& command) {
    Process openssl(command);
    if (openssl.Wait() != 0) throw std::runtime_error("openssl: " + openssl.GetLog());
}

} // namespace

Certificate::Certificate(TemporaryFolder const& folder, std::string const& name)
    : certificate(folder / (name + ".pem")), key(folder / (name + ".key")) {
    Run({"openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes", "-days", "2",
         "-subj", "/CN=localhost/O=" + name, "-addext", "subjectAltName=DNS:localhost,IP:127.0.0.1", "-keyout", key,
         "-out", certificate});
}

void Certificate::Expire() const {
    Run({"openssl", "x509", "-in", certificate, "-signkey", key, "-days", "-1", "-out", certificate});
}

} // namespace zarn::test
