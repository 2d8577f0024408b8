// The media files of a Linear, and where they stand in the record.

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/support/UpdaterFixture.h"

namespace tamzo::testing {
namespace {

using MediaFilesTest = UpdaterTest;

TEST_F(MediaFilesTest, EveryMediaFileIsRecordedInOrder) {
  ad_->updateMediaFiles(rootOf(
      "<Linear><MediaFiles><MediaFile type='video/webm'>1</MediaFile><Mezzanine>m</Mezzanine>"
      "<MediaFile type='video/mp4'> 2 </MediaFile>"
      "<InteractiveCreativeFile type='video/mp4'>x</InteractiveCreativeFile>"
      "<MediaFile type='video/3gpp'>3</MediaFile></MediaFiles></Linear>"));
  const auto& files = *ad_->mediaFiles();
  ASSERT_EQ(files.size(), 3U);
  EXPECT_EQ(files[0]->type(), Text("video/webm"));
  EXPECT_EQ(files[1]->type(), Text("video/mp4"));
  EXPECT_EQ(files[1]->url(), Text("2"));
  EXPECT_EQ(files[2]->type(), Text("video/3gpp"));
}

TEST_F(MediaFilesTest, MediaFilesOfASecondRunTakeTheSamePlaces) {
  ad_->updateMediaFiles(
      rootOf("<Linear><MediaFiles><MediaFile>1</MediaFile>"
             "<MediaFile>2</MediaFile></MediaFiles></Linear>"));
  ad_->updateMediaFiles(
      rootOf("<Linear><MediaFiles><MediaFile>3</MediaFile></MediaFiles></Linear>"));
  ASSERT_EQ(ad_->mediaFiles()->size(), 2U);
  EXPECT_EQ((*ad_->mediaFiles())[0]->url(), Text("3"));
  EXPECT_EQ((*ad_->mediaFiles())[1]->url(), Text("2"));
  ad_->updateMediaFiles(NodeList());
  ad_->updateMediaFiles(rootOf("<Linear/>"));
  EXPECT_EQ(ad_->mediaFiles()->size(), 2U);
}

TEST_F(MediaFilesTest, AMediaFileCannotBePutBeyondTheEnd) {
  const DDXMLElement file = rootOf("<MediaFile>u</MediaFile>").at(0);
  EXPECT_THROW(ad_->addOrSetMediaFile(file, 1), std::out_of_range);
  EXPECT_THROW(ad_->addOrSetMediaFile(file, -1), std::out_of_range);
  ad_->addOrSetMediaFile(DDXMLElement(), 0);
  EXPECT_TRUE(ad_->mediaFiles()->empty());
  ad_->addOrSetMediaFile(file, 0);
  EXPECT_EQ(ad_->mediaFiles()->size(), 1U);
}

TEST_F(MediaFilesTest, WhereAHostTookTheListAwayNothingIsRecorded) {
  ad_->setMediaFiles(nullptr);
  ad_->updateMediaFiles(
      rootOf("<Linear><MediaFiles><MediaFile>1</MediaFile></MediaFiles></Linear>"));
  EXPECT_EQ(ad_->mediaFiles(), nullptr);
}

}  // namespace
}  // namespace tamzo::testing
