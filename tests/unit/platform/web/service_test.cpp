#include <zarn/container/buffer.h>
#include <zarn/web/service.h>

#include <gtest/gtest.h>

namespace zarn::web {
namespace {

using Method = Service::Method;
using Status = response::Pending::Status;
using Fields = std::map<std::string, std::string>;

class MethodOnly : public Request {
public:
    explicit MethodOnly(Method method) : method(method) {}

    Method GetMethod() const override { return method; }

    std::string_view GetTarget() const override { return "/"; }

    std::string_view GetBody() const override { return ""; }

    std::map<std::string_view, std::string_view> GetFields() const override { return {}; }

private:
    Method method;
};

/// A service that answers each operation with its name.
class Named : public Service {
public:
    Response Get(std::shared_ptr<Request> /*request*/) override { return Name("GET"); }

    Response Put(std::shared_ptr<Request> /*request*/) override { return Name("PUT"); }

    Response Post(std::shared_ptr<Request> /*request*/) override { return Name("POST"); }

    Response Head(std::shared_ptr<Request> /*request*/) override { return Name("HEAD"); }

    Response Trace(std::shared_ptr<Request> /*request*/) override { return Name("TRACE"); }

    Response Delete(std::shared_ptr<Request> /*request*/) override { return Name("DELETE"); }

    Response Options(std::shared_ptr<Request> /*request*/) override { return Name("OPTIONS"); }

    Response Connect(std::shared_ptr<Request> /*request*/) override { return Name("CONNECT"); }

private:
    static Response Name(std::string name) { return response::MakeComplete(Status::Ok, {}, std::move(name)); }
};

constexpr Method WithOperation[] = {Method::Get,   Method::Put,    Method::Post,    Method::Head,
                                    Method::Trace, Method::Delete, Method::Options, Method::Connect};

response::Pending::Data Process(Service& service, Method method) {
    return service.Process(std::make_shared<MethodOnly>(method))->GetData();
}

TEST(Service, HandsEachMethodToItsOperation) {
    Named service;
    for (auto const method : WithOperation) {
        EXPECT_EQ(Process(service, method).GetBody().at(0)->ToStringView(), ToString(method));
    }
}

TEST(Service, RefusesEveryMethodThatIsNotOverridden) {
    Service service({Method::Get, Method::Put});
    for (auto const method : WithOperation) {
        if (method == Method::Options) continue;
        auto const data = Process(service, method);
        EXPECT_EQ(data.GetStatus(), Status::MethodNotAllowed) << ToString(method);
        EXPECT_EQ(data.GetState(), response::State::Complete);
        EXPECT_EQ(data.GetFields(), (Fields{{"Allow", "GET, PUT, OPTIONS"}}));
        EXPECT_TRUE(data.GetBody().empty());
    }
}

TEST(Service, RefusesAMethodWithoutOperation) {
    Named service;
    EXPECT_EQ(Process(service, Method::Patch).GetStatus(), Status::MethodNotAllowed);
}

TEST(Service, ListsItsMethodsOnOptions) {
    Service service;
    auto const data = Process(service, Method::Options);
    EXPECT_EQ(data.GetStatus(), Status::NoContent);
    EXPECT_EQ(data.GetFields(), (Fields{{"Allow", "POST, OPTIONS"}}));
}

TEST(Service, HasAnEmptySchema) { EXPECT_EQ(Service().GetSchema(), "{}"); }

} // namespace
} // namespace zarn::web
