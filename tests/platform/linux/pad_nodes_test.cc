#include "app/platform/linux/pad_nodes.h"

#include <gtest/gtest.h>

#include "tests/host/files.h"
#include "tests/platform/linux/fake_nodes.h"

namespace platform {
namespace {

using kelvaro::tests::Put;
using kelvaro::tests::TemporaryFolder;

DeviceFacts PadNamed(const std::string& name) {
  DeviceFacts facts;
  facts.ids.name = name;
  facts.keys[BTN_SOUTH] = true;
  return facts;
}

// What the kernel shows of a device, in a folder of a test.
class Tree {
 public:
  void Has(const std::string& file, const std::string& bits) {
    Put(folder.In("tree/device/" + file), bits + "\n");
  }
  NodePlace Place() const { return {"/dev/input/event3", folder.In("tree"), {}}; }

 private:
  const TemporaryFolder folder;
};

TEST(FactsInTree, AreThoseThatTheKernelWrites) {
  Tree tree;
  tree.Has("capabilities/key", "7cdb000000000000 0 0 0 1");  // from bit 304 on, and bit 0
  tree.Has("capabilities/abs", "3003f");
  tree.Has("capabilities/rel", "103");
  tree.Has("properties", "40");
  const DeviceFacts facts = FactsInTree(tree.Place());
  EXPECT_TRUE(facts.keys[0]);
  EXPECT_FALSE(facts.keys[1]);
  EXPECT_TRUE(facts.keys[BTN_SOUTH]);
  EXPECT_FALSE(facts.keys[BTN_C]);
  EXPECT_TRUE(facts.HasAxis(ABS_X));
  EXPECT_TRUE(facts.HasAxis(ABS_HAT0Y));
  EXPECT_FALSE(facts.HasAxis(ABS_GAS));
  EXPECT_TRUE(facts.relative[REL_WHEEL]);
  EXPECT_TRUE(facts.properties[INPUT_PROP_ACCELEROMETER]);
}

TEST(FactsInTree, AreNoneOfADeviceThatIsGone) {
  const DeviceFacts facts = FactsInTree({"/dev/input/event3", "/no/such/folder", {}});
  EXPECT_TRUE(facts.keys.none());
  EXPECT_FALSE(facts.HasAxis(ABS_X));
}

TEST(PadNodes, AreThoseOfPadsWhetherOrNotTheyCanBeOpened) {
  FakeMachine machine;
  const auto open = machine.Plug(1, PadNamed("Open"));
  DeviceFacts mouse;
  mouse.ids.name = "Mouse";
  machine.Plug(2, mouse);
  Tree tree;
  tree.Has("capabilities/key", "1000000000000 0 0 0 0");
  const auto closed = machine.Plug(3, PadNamed("Closed"));
  closed->openError = EACCES;
  closed->place.place = tree.Place().place;
  const auto closedMouse = machine.Plug(4, mouse);
  closedMouse->openError = EACCES;
  FakeNodes nodes(machine);
  const std::vector<PadNode> pads = PadNodes(nodes);
  ASSERT_EQ(pads.size(), 2u);
  EXPECT_EQ(pads[0].place.ids.name, "Open");
  EXPECT_EQ(pads[0].openError, 0);
  EXPECT_EQ(pads[1].place.ids.name, "Closed");
  EXPECT_EQ(pads[1].openError, EACCES);
}

}  // namespace
}  // namespace platform
