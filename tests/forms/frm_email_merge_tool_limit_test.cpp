#include <string>

#include <gtest/gtest.h>

#include "forms/frm_email_merge_tool.h"
#include "support/fake_platform.h"

namespace quenlar {
namespace {

std::string Lines(int count) {
  std::string lines;
  for (int i = 0; i < count; ++i) lines += "name" + std::to_string(i) + "@example.com\r\n";
  return lines;
}

TEST(EmailMergeTool, ShowsAndSavesAsManyAddressesAsSixteenBitsCount) {
  FakePlatform fakes;
  eMailBookMerge books;
  const Installation installation;
  frmEmailMergeTool form({books, fakes.files, fakes.code_page, fakes.loop, fakes.boxes, fakes.dialogs, installation,
                          [] { return Status::Ok(); }});
  form.Load();
  const auto extract = [&](int addresses) {
    fakes.files.Put("/book", Lines(addresses));
    ASSERT_TRUE(books.AddBook("/book").value());
    form.cmdExtract.SetEnabled(true);
    form.cmdExtract.Click();
  };
  fakes.boxes.shown.clear();
  extract(32767);
  EXPECT_TRUE(fakes.boxes.shown.empty());
  EXPECT_EQ(form.lstAddress.items().size(), 32767u);
  EXPECT_TRUE(form.cmdSave.enabled());

  extract(32768);
  ASSERT_EQ(fakes.boxes.shown.size(), 1u);
  EXPECT_EQ(fakes.boxes.shown[0].text, "Overflow !");
  EXPECT_EQ(fakes.boxes.shown[0].title, "Email Merge Tool");
  EXPECT_TRUE(form.lstAddress.items().empty());
  EXPECT_FALSE(form.cmdSave.enabled());
  EXPECT_TRUE(form.cmdClear.enabled());
}

}  // namespace
}  // namespace quenlar
