#include "netstat/interfaces.h"

#include <limits>

#include <gtest/gtest.h>

#include "support/fake_system.h"
#include "support/recorders.h"

namespace quenlar {
namespace {

InterfaceRow Row(std::uint32_t in_octets, std::uint32_t out_octets) {
  InterfaceRow row;
  row.in_octets = in_octets;
  row.out_octets = out_octets;
  return row;
}

class IpHelperTest : public testing::Test {
 protected:
  FakeInterfaceTable table_;
  RecordingBoxes boxes_;
  CIpHelper helper_{table_, boxes_};
};

TEST_F(IpHelperTest, SumsTheOctetsOfBothRowsOfAComputerWithTwoInterfaces) {
  table_.rows = {Row(1000, 10), Row(234, 5)};
  EXPECT_EQ(helper_.Interfaces().Count(), 2u);
  EXPECT_EQ(helper_.BytesReceived(), 1234);
  EXPECT_EQ(helper_.BytesSent(), 15);
}

TEST_F(IpHelperTest, SkipsARowWhoseOctetsDoNotFitIntoTheTotalAnyMore) {
  table_.rows = {Row(2'000'000'000, 1), Row(200'000'000, 2), Row(100'000'000, 3)};
  static_cast<void>(helper_.Interfaces());
  EXPECT_EQ(helper_.BytesReceived(), 2'100'000'000);
  EXPECT_EQ(helper_.BytesSent(), 6);
}

TEST_F(IpHelperTest, TakesCountersBitForBitSoThatLargeOnesAreNegative) {
  table_.rows = {Row(0xFFFFFFF0u, 0x80000000u), Row(6, 0x80000000u)};
  const CInterface* first = helper_.Interfaces().Item(1);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->OctetsReceived, -16);
  EXPECT_EQ(helper_.BytesReceived(), -10);
  EXPECT_EQ(helper_.BytesSent(), std::numeric_limits<std::int32_t>::min());
}

TEST_F(IpHelperTest, RebuildsEverythingAtEachRead) {
  table_.rows = {Row(1, 1)};
  static_cast<void>(helper_.Interfaces());
  table_.rows = {Row(7, 8), Row(1, 1)};
  EXPECT_EQ(helper_.Interfaces().Count(), 2u);
  EXPECT_EQ(helper_.BytesReceived(), 8);
  EXPECT_EQ(helper_.BytesSent(), 9);
}

TEST_F(IpHelperTest, IsEmptyAndSilentWhereTheTableCannotBeRead) {
  table_.rows = {Row(1, 1)};
  static_cast<void>(helper_.Interfaces());
  table_.outcome = TableOutcome::kFailed;
  EXPECT_EQ(helper_.Interfaces().Count(), 0u);
  EXPECT_EQ(helper_.BytesReceived(), 0);
  EXPECT_EQ(helper_.BytesSent(), 0);
  EXPECT_TRUE(boxes_.shown.empty());
}

TEST_F(IpHelperTest, SaysAtEveryReadThatTheSystemHasNoSuchTable) {
  table_.outcome = TableOutcome::kNotSupported;
  boxes_.while_shown = [this] { EXPECT_EQ(helper_.BytesReceived(), 0); };
  for (int i = 0; i < 2; ++i) EXPECT_EQ(helper_.Interfaces().Count(), 0u);
  ASSERT_EQ(boxes_.shown.size(), 2u);
  EXPECT_EQ(boxes_.shown[0].text, "IP Helper is not supported by this system !");
  EXPECT_EQ(boxes_.shown[0].title, "Brenvy Quenlar Pro 3.0");
  EXPECT_EQ(boxes_.shown[0].icon, BoxIcon::kStop);
}

TEST_F(IpHelperTest, CanBeGivenAnotherCollection) {
  CInterfaces given;
  EXPECT_EQ(given.Add({.InterfaceDescription = "x", .AdapterAddress = "", .LastChange = {}, .InterfaceName = ""})
                .InterfaceDescription,
            "x");
  helper_.SetInterfaces(given);
  table_.rows = {Row(1, 1), Row(1, 1)};
  EXPECT_EQ(helper_.Interfaces().Count(), 2u);  // and the next read replaces it
}

TEST(Interfaces, CountsItsElementsFromOne) {
  CInterfaces interfaces;
  EXPECT_EQ(interfaces.Item(1), nullptr);
  for (const char* name : {"first", "second"}) {
    CInterface added;
    added.InterfaceName = name;
    interfaces.Add(added);
  }
  EXPECT_EQ(interfaces.Item(0), nullptr);
  EXPECT_EQ(interfaces.Item(1)->InterfaceName, "first");
  EXPECT_EQ(interfaces.Item(2)->InterfaceName, "second");
  EXPECT_EQ(interfaces.Item(3), nullptr);
}

TEST(Interface, HasEveryFieldOfItsRow) {
  InterfaceRow row;
  row.name = "eth0";
  row.description = "Adapter";
  row.last_change = 2;
  std::uint32_t value = 100;
  for (std::uint32_t* field :
       {&row.admin_status, &row.index, &row.in_discards, &row.in_errors, &row.in_nonunicast, &row.in_octets,
        &row.in_unicast, &row.in_unknown, &row.mtu, &row.oper_status, &row.out_discards, &row.out_errors,
        &row.out_nonunicast, &row.out_octets, &row.out_queue_length, &row.out_unicast, &row.speed, &row.type}) {
    *field = value++;
  }
  const CInterface made = FromRow(row);
  EXPECT_EQ(made.InterfaceName, "eth0");
  EXPECT_EQ(made.InterfaceDescription, "Adapter");
  EXPECT_EQ(made.LastChange, 2.0);
  std::int32_t expected = 100;
  for (const std::int32_t property :
       {made.AdminStatus, made.InterfaceIndex, made.DiscardedIncomingPackets, made.IncomingErrors,
        made.NonunicastPacketsReceived, made.OctetsReceived, made.UnicastPacketsReceived, made.UnknownProtocolPackets,
        made.MaximumTransmissionUnit, made.OperationalStatus, made.DiscardedOutgoingPackets, made.OutgoingErrors,
        made.NonunicastPacketsSent, made.OctetsSent, made.OutputQueueLength, made.UnicastPacketsSent, made.Speed,
        made.InterfaceType}) {
    EXPECT_EQ(property, expected++);
  }
}

TEST(Interface, WritesItsAdapterAddressInTwoUpperCaseDigitsAByte) {
  InterfaceRow row;
  row.physical_address = {0x00, 0x1A, 0xFF, 0x05, 0xb0, 0x0c, 0x77, 0x88};
  const struct {
    std::uint32_t length;
    const char* text;
  } kCases[] = {
      {0, ""}, {1, "00"}, {6, "00-1A-FF-05-B0-0C"}, {8, "00-1A-FF-05-B0-0C-77-88"}, {4000, "00-1A-FF-05-B0-0C-77-88"}};
  for (const auto& c : kCases) {
    row.physical_address_length = c.length;
    EXPECT_EQ(FromRow(row).AdapterAddress, c.text) << c.length;
  }
}

TEST(PropertyDescription, IsWordForWordWithTheBlanksAtTheEnd) {
  EXPECT_STREQ(PropertyDescription("AdminStatus"), "Specifies the interface is administratively enabled or disabled. ");
  EXPECT_STREQ(PropertyDescription("InterfaceName"), "String that contains the name of the interface. ");
  EXPECT_STREQ(PropertyDescription("Speed"), "Specifies the speed of the interface in bits per second.");
  EXPECT_STREQ(PropertyDescription("NonunicastPacketsReceived"),
               "Specifies the number of non-unicast packets received through this interface. Broadcast and multicast "
               "packets are included.");
  EXPECT_STREQ(PropertyDescription("InterfaceDescription"), "");
  EXPECT_STREQ(PropertyDescription("speed"), "");
}

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

TEST(TrafficMeter, ShowsZeroAtTheFirstTick) {
  TrafficMeter meter;
  EXPECT_EQ(meter.Tick(1'000'000), 0);
  EXPECT_EQ(meter.rate(), 0);
}

TEST(TrafficMeter, ShowsFiftyFor51200BytesBetweenTwoTicksAndZeroFor1023) {
  TrafficMeter meter;
  meter.Tick(1000);
  EXPECT_EQ(meter.Tick(1000 + 51'200), 50);
  EXPECT_EQ(meter.Tick(1000 + 51'200 + 1'023), 0);
  EXPECT_EQ(meter.Tick(1000 + 51'200 + 1'023 + 1'024), 1);
}

TEST(TrafficMeter, IsNegativeForOneTickWhenACounterWraps) {
  TrafficMeter meter;
  meter.Tick(kHighest - 1'023);
  EXPECT_EQ(meter.Tick(kLowest + 1'024), -4'194'302);
  EXPECT_EQ(meter.Tick(kLowest + 3'072), 2);
}

TEST(TrafficMeter, TruncatesANegativeRateTowardZero) {
  TrafficMeter meter;
  meter.Tick(2'000'000);
  EXPECT_EQ(meter.Tick(1'000'000), -976);
  EXPECT_EQ(meter.Tick(1'000'000 - 1'000), 0);
}

TEST(TrafficMeter, TakesAZeroTotalForNoneYet) {
  TrafficMeter meter;
  EXPECT_EQ(meter.Tick(0), 0);
  EXPECT_EQ(meter.Tick(4096), 0);
  EXPECT_EQ(meter.Tick(8192), 4);
}

TEST(TrafficMeter, HoldsTheWidestDifferences) {
  TrafficMeter meter;
  meter.Tick(kLowest);
  EXPECT_EQ(meter.Tick(kHighest), 4'194'303);
  EXPECT_EQ(meter.Tick(kLowest), -4'194'303);
}

}  // namespace
}  // namespace quenlar
