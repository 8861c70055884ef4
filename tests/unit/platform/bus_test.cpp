// The system bus's run-time typed values: what is appended to a message reads back the same, and a value
// that does not fit its type is refused before anything is sent.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include "platform/hostctl/HostCtlException.h"
#include "platform/linux/Bus.h"

namespace LinuxHost {
namespace {

using Value = Bus::Value;

// A bus over a socket pair that nobody answers: enough to build messages and read them back sealed.
class BusValues : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, fds_), 0);
        ASSERT_GE(sd_bus_new(&bus_), 0);
        ASSERT_GE(sd_bus_set_fd(bus_, fds_[0], fds_[0]), 0);
        ASSERT_GE(sd_bus_start(bus_), 0);
        message_ = NewMessage();
    }
    void TearDown() override {
        sd_bus_message_unref(message_);
        sd_bus_close_unref(bus_);  // nothing to flush: nobody reads the other end
        close(fds_[1]);
    }
    sd_bus_message* NewMessage() {
        sd_bus_message* message = nullptr;
        EXPECT_GE(sd_bus_message_new_method_call(bus_, &message, "a.b", "/a", "a.b", "M"), 0);
        return message;
    }
    // Every value appended so far, read back in order.
    Value ReadBack() {
        EXPECT_GE(sd_bus_message_seal(message_, 1, 0), 0);
        EXPECT_GE(sd_bus_message_rewind(message_, 1), 0);
        Value values = Value::array();
        while (sd_bus_message_at_end(message_, 1) == 0) values.push_back(Bus::ReadNext(message_));
        return values;
    }

    int fds_[2] = {-1, -1};
    sd_bus* bus_ = nullptr;
    sd_bus_message* message_ = nullptr;
};

TEST_F(BusValues, NestedSettingsReadBackAsTheyWereWritten) {
    // A network profile's shape: dictionaries of variants holding arrays of dictionaries, byte arrays
    // and numbers of every width.
    const Value settings = {
        {"connection",
         {{"id", Bus::Variant("s", "Management Network")}, {"autoconnect", Bus::Variant("b", true)}}},
        {"ipv4",
         {{"address-data", Bus::Variant("aa{sv}", Value::array({{{"address", Bus::Variant("s", "10.0.0.2")},
                                                                 {"prefix", Bus::Variant("u", 24)}}}))},
          {"dns", Bus::Variant("au", Value::array({16777226u, 4294967295u}))},
          {"route-metric", Bus::Variant("x", -1)},
          {"dns-search", Bus::Variant("as", Value::array({"lab", "example.com"}))}}},
        {"ipv6",
         {{"dns", Bus::Variant("aay", Value::array({Value::array(
                                          {253, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1})}))},
          {"ip6-privacy", Bus::Variant("i", -2147483647 - 1)},
          {"mtu", Bus::Variant("t", 18446744073709551615ull)},
          {"weight", Bus::Variant("d", 0.5)},
          {"empty", Bus::Variant("a{sv}", Value::object())},
          {"nested", Bus::Variant("v", Bus::Variant("q", 65535))}}},
    };
    Bus::Append(message_, "a{sa{sv}}", settings);
    // Dictionaries with keys that are not strings come back as pairs; structs as arrays.
    const Value pairs = Value::array({Value::array({7, "seven"}), Value::array({-1, ""})});
    Bus::Append(message_, "a{is}", pairs);
    const Value routes = Value::array({Value::array({Value::array({1, 2}), 64u, Value::array({3})})});
    Bus::Append(message_, "a(ayuay)", routes);
    Bus::Append(message_, "y", 255);
    Bus::Append(message_, "n", -32768);
    Bus::Append(message_, "o", "/org/example/1");

    const Value read = ReadBack();
    ASSERT_EQ(read.size(), 6u);
    EXPECT_EQ(read[0], settings);
    EXPECT_EQ(read[1], pairs);
    EXPECT_EQ(read[2], routes);
    EXPECT_EQ(read[3], 255);
    EXPECT_EQ(read[4], -32768);
    EXPECT_EQ(read[5], "/org/example/1");
}

TEST_F(BusValues, AValueThatDoesNotFitItsTypeIsRefused) {
    const struct {
        const char* signature;
        Value value;
    } refused[] = {
        {"u", "5"},                                    // a string for a number
        {"u", -1},                                     // below an unsigned type
        {"y", 256},                                    // above a byte
        {"i", 2147483648u},                            // above a signed type
        {"x", 9223372036854775808ull},                 // above the widest signed type
        {"b", 1},                                      // a number for a boolean
        {"s", nullptr},                                // nothing for a string
        {"v", Value{{"v", 1}}},                        // a variant without its type
        {"(su)", Value::array({"a"})},                 // a struct short of a field
        {"as", "a"},                                   // a string for an array
        {"a{sv}", 5},                                  // a number for a dictionary
        {"a{is}", Value::array({Value::array({1})})},  // a pair without its value
        {"a", Value::array()},                         // a signature that is no type
        {"(s", Value::array({"a"})},                   // nor is an unclosed struct
        {"su", Value::array({"a", 1})},                // two types where one is asked
        {"h", 0},                                      // a file descriptor is never sent
    };
    for (const auto& [signature, value] : refused) {
        sd_bus_message* message = NewMessage();
        EXPECT_THROW(Bus::Append(message, signature, value), HostCtl::Lib::HostCtlException)
            << signature << " " << value.dump();
        sd_bus_message_unref(message);
    }
}

}  // namespace
}  // namespace LinuxHost
