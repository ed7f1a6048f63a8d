#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

namespace nimbrel {
namespace {

std::string HelpPage() {
  std::ostringstream text;
  text << std::ifstream(NIMBREL_SOURCE_DIR "/docs/help/C21_WeatherOverview.html").rdbuf();
  return text.str();
}

TEST(HelpPage, NeedsNothingBesideItself) {
  const std::string page = HelpPage();
  ASSERT_NE(page.find("</html>"), std::string::npos);
  for (const char* outside : {"http:", "https:", "src=", "url(", "@import", "<link", "<script"}) {
    EXPECT_EQ(page.find(outside), std::string::npos) << outside;
  }
}

TEST(HelpPage, IsForLightAndDarkScreens) {
  EXPECT_NE(HelpPage().find("prefers-color-scheme: dark"), std::string::npos);
}

TEST(HelpPage, LeadsOnlyToPlacesThatItHas) {
  const std::string page = HelpPage();
  int links = 0;
  const std::string mark = "href=\"#";
  for (std::size_t at = page.find(mark); at != std::string::npos; at = page.find(mark, at + 1)) {
    const std::size_t begin = at + mark.size();
    const std::string place = page.substr(begin, page.find('"', begin) - begin);
    EXPECT_NE(page.find("id=\"" + place + "\""), std::string::npos) << place;
    ++links;
  }
  EXPECT_GT(links, 0);
}

}  // namespace
}  // namespace nimbrel
