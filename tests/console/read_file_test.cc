#include "console/read_file.h"

#include "tests/console/console_run.h"

namespace kelvaro::console {
namespace {

TEST(ReadWholeFile, GivesEveryByte) {
  std::string bytes("a\0\r\n\xFF", 5);
  bytes += std::string(200'000, 'x');  // more than one block
  const TestFile file("bytes", bytes);
  std::string content = "old";
  std::string error;
  ASSERT_TRUE(ReadWholeFile(file.path, 1, &content, &error)) << error;
  EXPECT_EQ(content, bytes);

  const TestFile empty("empty", "");
  ASSERT_TRUE(ReadWholeFile(empty.path, 1, &content, &error)) << error;
  EXPECT_EQ(content, "");
}

TEST(ReadWholeFile, SaysWhyItCant) {
  std::string content;
  std::string error;
  EXPECT_FALSE(ReadWholeFile(testing::TempDir() + "kelvaro_no_such_file", 1, &content, &error));
  EXPECT_EQ(error, "No such file or directory");
  EXPECT_FALSE(ReadWholeFile(testing::TempDir(), 1, &content, &error));
  EXPECT_EQ(error, "Is a directory");
}

TEST(ReadWholeFile, StopsAtTheSizeGiven) {
  const TestFile file("full", std::string(1 << 20, 'x'));
  const TestFile more("more", std::string((1 << 20) + 1, 'x'));
  std::string content;
  std::string error;
  EXPECT_TRUE(ReadWholeFile(file.path, 1, &content, &error));
  EXPECT_FALSE(ReadWholeFile(more.path, 1, &content, &error));
  EXPECT_EQ(error, "larger than 1 MiB");
  EXPECT_FALSE(ReadWholeFile("/dev/zero", 1, &content, &error));  // without an end
  EXPECT_EQ(error, "larger than 1 MiB");
}

}  // namespace
}  // namespace kelvaro::console
