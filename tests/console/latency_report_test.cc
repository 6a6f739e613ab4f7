#include "console/latency_report.h"

#include <gtest/gtest.h>

#include "console/percentile.h"
#include "tests/host/json.h"

namespace kelvaro::console {
namespace {

using Kind = LatencyWay::Kind;

TEST(Percentile, LiesBetweenTheTwoNearest) {
  const std::vector<double> rising = {10, 20, 40, 80, 160};
  EXPECT_DOUBLE_EQ(Percentile(rising, 0), 10);
  EXPECT_DOUBLE_EQ(Percentile(rising, 0.5), 40);
  EXPECT_DOUBLE_EQ(Percentile(rising, 0.6), 56);  // 2.4 places on
  EXPECT_DOUBLE_EQ(Percentile(rising, 1), 160);
  EXPECT_DOUBLE_EQ(Percentile({7}, 0.95), 7);
}

// 10 us, 20 us ... 1010 us: the place of each hundredth is a value.
std::vector<double> HundredSteps() {
  std::vector<double> values;
  for (int i = 1; i <= 101; ++i) values.push_back(10.0 * i);
  return values;
}

std::vector<LatencyWay> Ways() {
  LatencyWay machine;
  machine.interval = 5;
  machine.kernel = {4, 5, 6};
  machine.read = {8, 9, 10};
  LatencyWay interval;
  interval.kind = Kind::Interval;
  interval.interval = 5;
  interval.kernel = HundredSteps();
  interval.read = HundredSteps();
  interval.lost = 2;
  interval.taps = 100;
  interval.tapsLost = 46;
  LatencyWay wake;
  wake.kind = Kind::Wake;
  wake.interval = 5;
  wake.lost = 3;
  return {machine, interval, wake};
}

TEST(LatencyText, IsATableAndTheTaps) {
  EXPECT_EQ(
      LatencyText(Ways()),
      R"(  From press to key, in microseconds    least   median     95 %     99 %  slowest     lost
  the machine alone                         8        9       10       10       10        0
  Kelvaro, each 5 ms                       10      510      960     1000     1010        2
  Kelvaro, at once (--wake)                 -        -        -        -        -        3

  Taps of 1 to 4 ms that gave no key
  Kelvaro, each 5 ms: 46 of 100
)");
}

TEST(LatencyJson, IsALineForEachWay) {
  const std::vector<tests::Json> values = tests::ParsedLines(LatencyJson(Ways()));
  ASSERT_EQ(values.size(), 3u);
  EXPECT_EQ(values[0]["way"].Text(), "machine");
  EXPECT_FALSE(values[0]["interval"].IsNumber());
  EXPECT_EQ(values[0]["presses"].Signed(), 3);
  EXPECT_EQ(values[0]["kernel"]["median"].Real(), 5);
  EXPECT_EQ(values[0]["read"]["median"].Real(), 9);
  EXPECT_FALSE(values[0]["tapsLost"].IsNumber());
  EXPECT_EQ(values[1]["way"].Text(), "interval");
  EXPECT_EQ(values[1]["interval"].Signed(), 5);
  EXPECT_EQ(values[1]["presses"].Signed(), 103);
  EXPECT_EQ(values[1]["lost"].Signed(), 2);
  EXPECT_EQ(values[1]["read"]["least"].Real(), 10);
  EXPECT_EQ(values[1]["read"]["p95"].Real(), 960);
  EXPECT_EQ(values[1]["read"]["p99"].Real(), 1000);
  EXPECT_EQ(values[1]["read"]["slowest"].Real(), 1010);
  EXPECT_EQ(values[1]["tapsLost"].Signed(), 46);
  EXPECT_EQ(values[2]["way"].Text(), "wake");
  EXPECT_FALSE(values[2]["read"].IsObject());
}

std::size_t Count(const std::string& text, const std::string& what) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; ++at) ++count;
  return count;
}

// 684 units across, 304 down, from 60 and 20 on.
TEST(LatencySvg, ACurveClimbsAtEachPressToTheShareThatHasItsKey) {
  LatencyWay way;
  way.kind = Kind::Wake;
  way.kernel = way.read = {10, 100};
  way.lost = 2;
  const std::string svg = LatencySvg({way});
  // A decade from edge to edge; two of four presses.
  EXPECT_NE(svg.find("d=\"M60.0 324.0H60.0V248.0H696.0V172.0\""), std::string::npos) << svg;
  EXPECT_NE(svg.find(">10 us<"), std::string::npos);
  EXPECT_NE(svg.find(">100 us<"), std::string::npos);
  EXPECT_EQ(Count(svg, ">1 ms<"), 0u);
  EXPECT_NE(svg.find(">Kelvaro, at once (--wake)<"), std::string::npos);
}

TEST(LatencySvg, WhatHasNoTimesHasNoCurve) {
  const std::string svg = LatencySvg(Ways());
  EXPECT_NE(svg.find("the machine alone"), std::string::npos);
  EXPECT_NE(svg.find("Kelvaro, each 5 ms"), std::string::npos);
  EXPECT_EQ(svg.find("at once"), std::string::npos);
  EXPECT_EQ(Count(LatencySvg({}), "stroke-width=\"2\""), 0u);
}

}  // namespace
}  // namespace kelvaro::console
