#include <zarn/object/object.h>
#include <zarn/object/typed.h>

#include <gmock/gmock.h>

namespace zarn::object {
namespace {

class Vehicle : public Typed<Vehicle> {
public:
    static constexpr char const* TypeName = "test.Vehicle";
};

class Car : public Typed<Car, Vehicle> {
public:
    static constexpr char const* TypeName = "test.Car";
};

/// A different type with the same name, as in another library.
class CarElsewhere : public Typed<CarElsewhere, Vehicle> {
public:
    static constexpr char const* TypeName = "test.Car";
};

TEST(Object, KnowsItsOwnType) {
    Car const car;
    EXPECT_STREQ(car.GetTypeName(), "test.Car");
    EXPECT_EQ(car.GetTypeHash(), type::Hash("test.Car"));
}

TEST(Object, IsOfItsTypeAndItsBases) {
    Car const car;
    EXPECT_TRUE(car.Is<Car>());
    EXPECT_TRUE(car.Is<Vehicle>());
    EXPECT_TRUE(car.Is<Object>());
}

TEST(Object, IsNotOfADerivedType) { EXPECT_FALSE(Vehicle().Is<Car>()); }

TEST(Object, IsDistinguishedByTypeNameOnly) { EXPECT_TRUE(Car().Is<CarElsewhere>()); }

TEST(Object, CastsToItsTypes) {
    Car car;
    Object& object = car;
    EXPECT_EQ(&object.As<Car>(), &car);
    EXPECT_EQ(&static_cast<Object const&>(object).As<Vehicle>(), &car);
}

TEST(Object, ThrowsBadCastWithTheRequestedType) {
    Vehicle vehicle;
    try {
        vehicle.As<Car>();
        FAIL();
    } catch (BadCast const& error) {
        EXPECT_EQ(error.GetTypeName(), "test.Car");
        EXPECT_STREQ(error.what(), "object is a test.Vehicle, not a test.Car");
    }
    EXPECT_THROW(static_cast<Vehicle const&>(vehicle).As<Car>(), BadCast);
}

} // namespace
} // namespace zarn::object
