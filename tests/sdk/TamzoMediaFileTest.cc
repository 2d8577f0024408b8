#include "tamzo/sdk/TamzoMediaFile.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "tests/support/Documents.h"

namespace tamzo::testing {
namespace {

TEST(TamzoMediaFileTest, AMediaFileIsItsTextAndAttributes) {
  const auto file = TamzoMediaFile::initWithNode(root(
      "<MediaFile id='m' delivery='streaming' type='Video/MP4' codec='h264' apiFramework='VPAID'"
      " width='300px' height='' bitrate='-1' minBitrate='x' maxBitrate='99999999999' fileSize='7'"
      " scalable='TRUE' maintainAspectRatio='0'>\n <![CDATA[ https://c.example/a ]]>\n"
      "</MediaFile>"));
  EXPECT_EQ(file->url(), "https://c.example/a");
  EXPECT_EQ(file->id(), "m");
  EXPECT_EQ(file->delivery(), "streaming");
  EXPECT_EQ(file->type(), "Video/MP4");
  EXPECT_EQ(file->codec(), "h264");
  EXPECT_EQ(file->apiFramework(), "VPAID");
  EXPECT_EQ(file->width(), 300);
  EXPECT_EQ(file->height(), 0);
  EXPECT_EQ(file->bitrate(), -1);
  EXPECT_EQ(file->minBitrate(), 0);
  EXPECT_EQ(file->maxBitrate(), std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(file->fileSize(), 7);
  EXPECT_EQ(file->scalable(), true);
  EXPECT_EQ(file->maintainAspectRatio(), false);

  const auto bare = TamzoMediaFile::initWithNode(root("<MediaFile/>"));
  EXPECT_EQ(bare->url(), "");
  EXPECT_TRUE(bare->id().isNil() && bare->delivery().isNil() && bare->type().isNil());
  EXPECT_TRUE(bare->codec().isNil() && bare->apiFramework().isNil());
  EXPECT_FALSE(bare->width() || bare->height() || bare->bitrate() || bare->minBitrate());
  EXPECT_FALSE(bare->maxBitrate() || bare->fileSize() || bare->scalable() ||
               bare->maintainAspectRatio());
}

TEST(TamzoMediaFileTest, AFileOfNoElementHasNothing) {
  const TamzoMediaFile none;
  EXPECT_TRUE(none.url().isNil() && none.type().isNil() && none.id().isNil());
  EXPECT_FALSE(none.width() || none.scalable());
}

}  // namespace
}  // namespace tamzo::testing
