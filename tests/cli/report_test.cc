// The HTML report, read as text: its figures against the run's JSON, and what may stand in it.
// scripts/check-report opens it in a browser.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "nimbrel/json_text.h"
#include "nimbrel/report/figures.h"
#include "nimbrel/report/page.h"
#include "tests/cli/cli_fixture.h"

namespace nimbrel::cli {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

/// What a browser makes of the text of an element without elements of interest in it.
std::string TextOf(std::string html) {
  html = std::regex_replace(html, std::regex("<[^>]*>"), "");
  const std::array<std::pair<const char*, const char*>, 5> entities = {
      {{"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&#39;", "'"}, {"&amp;", "&"}}};
  for (const auto& [entity, character] : entities) {
    html = std::regex_replace(html, std::regex(entity), character);
  }
  return html;
}

struct ShownFigure {
  std::string place;
  std::string form;
  std::string text;
};

std::vector<ShownFigure> FiguresIn(const std::string& page) {
  std::vector<ShownFigure> figures;
  const std::string begin = "<span data-json=\"";
  for (std::size_t at = page.find(begin); at != std::string::npos; at = page.find(begin, at + 1)) {
    const std::size_t place = at + begin.size();
    const std::size_t place_end = page.find('"', place);
    const std::size_t form = page.find("data-as=\"", place_end) + 9;
    const std::size_t form_end = page.find('"', form);
    const std::size_t end = page.find("</span>", form_end);
    figures.push_back({page.substr(place, place_end - place), page.substr(form, form_end - form),
                       TextOf(page.substr(form_end + 2, end - form_end - 2))});
  }
  return figures;
}

/// Whether a number in text is the value, as far as its decimals go.
bool IsNumber(const std::string& text, double value) {
  char* end = nullptr;
  const double shown = std::strtod(text.c_str(), &end);
  const std::size_t point = text.find('.');
  const auto decimals = point == std::string::npos ? 0 : static_cast<int>(text.size() - point - 1);
  return !text.empty() && *end == '\0' &&
         std::abs(shown - value) <= 0.5 * std::pow(10.0, -decimals) + 1e-9;
}

/// The day before, in the test's few months of 2027.
std::string DayBefore(const std::string& day) {
  const int date = std::stoi(day.substr(8));
  EXPECT_GT(date, 1) << "the test does not know how long months are";
  return day.substr(0, 8) + (date <= 10 ? "0" : "") + std::to_string(date - 1);
}

/// "2 April 2027" of "2027-04-02".
std::string InWords(const std::string& day) {
  const std::vector<std::string> months = {"January",   "February", "March",    "April",
                                           "May",       "June",     "July",     "August",
                                           "September", "October",  "November", "December"};
  return std::to_string(std::stoi(day.substr(8))) + " " +
         months.at(static_cast<std::size_t>(std::stoi(day.substr(5, 2)) - 1)) + " " +
         day.substr(0, 4);
}

bool Agrees(const ShownFigure& figure, const Json& value) {
  if (value.is_null()) {
    return figure.text == "–";
  }
  if (figure.form == "finish" || figure.form == "start") {
    const std::string moment = value.get<std::string>();
    std::string day = moment.substr(0, 10);
    if (figure.form == "finish" && moment.substr(10) == "T00:00") {
      day = DayBefore(day);
    }
    return figure.text == day || figure.text == InWords(day);
  }
  if (figure.form == "share") {
    return figure.text.ends_with("%") &&
           IsNumber(figure.text.substr(0, figure.text.size() - 1), 100 * value.get<double>());
  }
  if (figure.form == "days" || figure.form == "number") {
    return IsNumber(figure.text, value.get<double>());
  }
  if (figure.form == "count") {
    return std::regex_replace(figure.text, std::regex(","), "") == value.dump();
  }
  return figure.text == (value.is_string() ? value.get<std::string>() : value.dump());
}

/// Expects that all of `part` stands in `whole` as it is; lists may end earlier, and null stands
/// for what was left out.
void ExpectWithin(const Json& part, const Json& whole, const std::string& place) {
  if (part.is_structured() && !part.empty()) {
    ASSERT_EQ(part.type(), whole.type()) << place;
    ASSERT_LE(part.size(), whole.size()) << place;
    for (const auto& [key, value] : part.items()) {
      const bool is_there = whole.is_array() || whole.contains(key);
      ASSERT_TRUE(is_there) << place << "/" << key;
      ExpectWithin(value, whole.is_array() ? whole[std::stoul(key)] : whole[key],
                   place + "/" + key);
    }
  } else if (!part.is_null()) {
    EXPECT_EQ(part, whole) << place;
  }
}

/// The content of the page's element for data.
std::string DataText(const std::string& page) {
  const std::string begin = "<script type=\"application/json\" id=\"run\">";
  const std::size_t at = page.find(begin) + begin.size();
  return page.substr(at, page.find("</script>", at) - at);
}

/// The page without its scripts and styles.
std::string Markup(const std::string& page) {
  std::string markup;
  std::size_t at = 0;
  while (true) {
    const std::size_t script = std::min(page.find("<script", at), page.find("<style", at));
    markup += page.substr(at, script - at);
    if (script == std::string::npos) {
      return markup;
    }
    const bool is_style = page.compare(script, 6, "<style") == 0;
    at = page.find(is_style ? "</style>" : "</script>", script) + (is_style ? 8 : 9);
  }
}

/// What is wrong with the nesting of the elements.
std::string NestingError(const std::string& markup) {
  const std::set<std::string> empty = {"meta", "input", "br"};
  std::vector<std::string> open;
  const std::regex tag("<(/?)([a-zA-Z][a-zA-Z0-9]*)([^>]*)>");
  for (std::sregex_iterator i(markup.begin(), markup.end(), tag); i != std::sregex_iterator();
       ++i) {
    const std::string name = (*i)[2];
    if ((*i)[1] == "/") {
      if (open.empty() || open.back() != name) {
        return "</" + name + "> closes " + (open.empty() ? "nothing" : open.back());
      }
      open.pop_back();
    } else if (!empty.contains(name) && !(*i)[3].str().ends_with("/")) {
      open.push_back(name);
    }
  }
  return open.empty() ? "" : open.back() + " stays open";
}

class ReportTest : public CliTest {
 protected:
  /// Runs with a report and JSON; gives the page, with the JSON in `json`.
  std::string Page(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "run");
    arguments.insert(arguments.end(), {"--report", Path("r.html"), "--json", Path("r.json")});
    Output(arguments);
    json = Json::parse(Read(Path("r.json")));
    return Read(Path("r.html"));
  }

  void ExpectFiguresOfTheJson(const std::string& page, std::size_t at_least) {
    const std::vector<ShownFigure> figures = FiguresIn(page);
    EXPECT_GE(figures.size(), at_least);
    for (const ShownFigure& figure : figures) {
      const Json::json_pointer place(figure.place);
      const Json value = json.contains(place) ? json.at(place) : Json(nullptr);
      EXPECT_TRUE(Agrees(figure, value))
          << figure.place << " is " << value << ", the page shows \"" << figure.text << "\"";
    }
    ExpectWithin(Json::parse(DataText(page)), json, "");
  }

  Json json;
};

TEST_F(ReportTest, ItsFiguresAreThoseOfTheJson) {
  const std::string page =
      Page({WeatherPlan(), "--compare", "--attribute", "--milestone", "M", "--iterations", "100"});
  ExpectFiguresOfTheJson(page, 200);
  for (const char* section : {"summary", "finish", "cost", "season", "drivers", "milestones",
                              "chain", "tasks", "inputs", "making"}) {
    EXPECT_THAT(page, AllOf(HasSubstr("<section id=\"" + std::string(section) + "\""),
                            HasSubstr("<a href=\"#" + std::string(section) + "\">")));
  }
  EXPECT_EQ(page.find("was not computed"), std::string::npos);
}

TEST_F(ReportTest, NamesTheOptionsForWhatWasNotComputed) {
  const std::string page = Page({WeatherPlan(), "--iterations", "50"});
  ExpectFiguresOfTheJson(page, 100);
  EXPECT_THAT(page, HasSubstr("<code>nimbrel run --compare</code>"));
  EXPECT_THAT(page, HasSubstr("<code>nimbrel run --attribute</code>"));
}

TEST_F(ReportTest, TellsTheFinishWithoutWeatherFromAnAttributionToo) {
  const std::string page = Page({WeatherPlan(), "--attribute", "--iterations", "50"});
  ExpectFiguresOfTheJson(page, 100);
  EXPECT_THAT(page, HasSubstr("data-json=\"/attribution/none/finish/p80\""));
  EXPECT_THAT(page, Not(HasSubstr("nimbrel run --compare")));
}

TEST_F(ReportTest, OfAPlanWithoutRangesDrawsNoDrivers) {
  // Every duration is certain: tasks are critical, but none bears on the finish.
  const std::string page = Page({ChainPlan(), "--iterations", "20"});
  EXPECT_THAT(page, HasSubstr("No task’s duration varies on a way to it."));
  EXPECT_THAT(page, Not(HasSubstr("data-chart=\"drivers-0\"")));
}

TEST_F(ReportTest, OfWeatherWithoutCalendarsDrawsNoCosts) {
  const std::string none = Write("none.json", R"({"events": [], "windows": [], "assign": []})");
  const std::string page =
      Page({WeatherPlan(), "--weather", none, "--attribute", "--iterations", "20"});
  EXPECT_THAT(page, HasSubstr("The plan has no weather calendars."));
  EXPECT_THAT(page, Not(HasSubstr("data-chart=\"cost\"")));
}

TEST_F(ReportTest, OfARunWithoutWeatherHasNoneOfIt) {
  const std::string page = Page({WeatherPlan(), "--no-weather", "--iterations", "50"});
  ExpectFiguresOfTheJson(page, 60);
  EXPECT_THAT(page, HasSubstr("The run had no weather."));
  EXPECT_THAT(page, Not(HasSubstr("<section id=\"season\"")));
  EXPECT_THAT(page, Not(HasSubstr("data-chart=\"cost\"")));
}

/// Runs what the report says to run, on the plan and the weather file of the run.
Json StoryOfThePage(const std::string& page, const std::string& plan, const std::string& weather,
                    const std::function<std::string(const std::vector<std::string>&)>& run) {
  const std::string begin = "<code>nimbrel explain ";
  const std::size_t at = page.find(begin) + 14;
  std::istringstream command(TextOf(page.substr(at, page.find("</code>", at) - at)));
  std::vector<std::string> arguments;
  for (std::string word; command >> word;) {
    arguments.push_back(word == "PLAN" ? plan : word == "WEATHER.json" ? weather : word);
  }
  arguments.emplace_back("--json");
  return Json::parse(run(arguments));
}

TEST_F(ReportTest, ItsCommandTellsTheIterationThatItShows) {
  const std::string plan = WeatherPlan();
  const std::string weather = Write("other.json", R"({
    "events": [ { "calendar": "RAIN", "periods": [ { "description": "Spring",
      "start": "2027-03-01", "finish": "2027-04-10", "probability": 1.0,
      "min": 2, "likely": 6, "max": 20 } ] } ],
    "windows": [], "assign": [ { "match": "*", "calendars": ["RAIN"], "nosplit": false } ] })");
  const std::vector<std::vector<std::string>> runs = {
      {"--seed", "7", "--sampling", "lhs", "--iterations", "60", "--weather", weather},
      {"--seed", "7", "--sampling", "lhs", "--iterations", "900", "--until", "4"},
      {"--seed", "18446744073709551615", "--iterations", "50", "--no-weather"},
      {"--seed", "3", "--compare", "--attribute", "--iterations", "40"}};
  for (std::vector<std::string> options : runs) {
    options.insert(options.begin(), plan);
    const std::string page = Page(options);
    const Json story = StoryOfThePage(
        page, plan, weather,
        [this](const std::vector<std::string>& arguments) { return Output(arguments); });
    EXPECT_EQ(story["finish"], json["critical_chain"]["finish"]) << options[2];
    EXPECT_EQ(story["iteration"], json["critical_chain"]["iteration"]);
    const Json plain = Json::parse(Output(
        {"explain", plan, "--iteration", std::to_string(story["iteration"].get<int>()), "--json"}));
    EXPECT_NE(plain["finish"], story["finish"]) << "the options make no difference";
  }
}

TEST_F(ReportTest, OfAPlanOfAnotherProgramNamesHowItWasRead) {
  const std::string plan = ChainXer();
  const std::string page = Page({plan, "--time-unit", "hours", "--project", "chain"});
  const Json story =
      StoryOfThePage(page, plan, "", [this](const std::vector<std::string>& arguments) {
        std::vector<std::string> words = arguments;
        std::erase(words, "'chain'");
        words.insert(std::find(words.begin(), words.end(), "--project") + 1, "chain");
        EXPECT_THAT(words, ::testing::Contains("hours"));
        return Output(words);
      });
  EXPECT_EQ(story["finish"], json["critical_chain"]["finish"]);
}

TEST_F(ReportTest, CallsNothingAChanceThatTooFewIterationsTell) {
  const std::string plan = WeatherPlan();
  const std::string few = Page({plan, "--compare", "--iterations", "16"});
  EXPECT_THAT(few, Not(HasSubstr("there is a chance of 80% that the plan is finished by")));
  EXPECT_THAT(TextOf(few), HasSubstr("16 iterations are too few to say by when"));
  EXPECT_THAT(Page({plan, "--compare", "--iterations", "17"}),
              HasSubstr("there is a chance of 80% that the plan is finished by"));
}

TEST_F(ReportTest, CountsOneThingAsOne) {
  const std::string plan = Path("one.nplan");
  Output({"import", Write("one.xer", MakeChainXer({{"A", "Dig", 40}})), "-o", plan});
  Output({"ranges", plan, "--default", "80,100,140"});
  const std::string page = Page({plan, "--iterations", "40"});
  EXPECT_THAT(page, HasSubstr("Table of 1 task<"));
  EXPECT_THAT(page, HasSubstr("The only task that drives it."));
  EXPECT_EQ(page.find("1 tasks"), std::string::npos);
  EXPECT_EQ(page.find("1 rows"), std::string::npos);
  EXPECT_EQ(json["inputs"][0]["rows"][3], (Json{"--weather", "none: the plan has none"}));
}

TEST_F(ReportTest, TellsHowManyHaveFinishedWhereTheMarkStands) {
  // All iterations of a plan without ranges finish on one day.
  const std::string page = Page({ChainPlan(), "--iterations", "40"});
  EXPECT_THAT(TextOf(page), HasSubstr("it is higher than 80%, here 100.0%."));
  EXPECT_THAT(TextOf(Page({WeatherPlan(), "--compare", "--iterations", "40"})),
              ::testing::ContainsRegex("here [0-9.]+% with weather, [0-9.]+% without\\."));
}

TEST_F(ReportTest, NamesCalendarsThatNobodyHas) {
  const std::string plan = ChainPlan();
  Output({"weather", "set", plan, Write("alone.json", R"({
    "events": [ { "calendar": "FAR OFF", "periods": [ { "description": "March",
      "start": "2027-03-01", "finish": "2027-03-14", "probability": 1.0,
      "min": 2, "likely": 2, "max": 2 } ] } ], "windows": [], "assign": [] })")});
  const std::string note = "FAR OFF is assigned to no task: all its days count as no work anyway.";
  EXPECT_THAT(TextOf(Page({plan, "--attribute", "--iterations", "20"})), HasSubstr(note));
  EXPECT_EQ(json["ledger"][0]["tasks"], 0);
  EXPECT_THAT(Output({"run", plan, "--attribute", "--iterations", "20"}), HasSubstr(note));
  const std::string assigned = WeatherPlan();
  EXPECT_THAT(TextOf(Page({assigned, "--attribute", "--iterations", "20"})),
              Not(HasSubstr("is assigned to no task")));
  EXPECT_EQ(json["ledger"][0]["tasks"], 3);
}

TEST_F(ReportTest, OfOneIterationHasNoIntervals) {
  const std::string page = Page({WeatherPlan(), "--compare", "--attribute", "--iterations", "1"});
  ExpectFiguresOfTheJson(page, 100);
  EXPECT_THAT(page, HasSubstr("too few iterations for an interval"));
  EXPECT_EQ(page.find("p80_low\" data-as"), std::string::npos);
}

TEST_F(ReportTest, OfAPlanThatIsNoWeatherPlanSaysSo) {
  const std::string page = Page({ChainPlan(), "--compare", "--iterations", "20"});
  ExpectFiguresOfTheJson(page, 60);
  EXPECT_THAT(page, HasSubstr("<section id=\"warnings\""));
}

TEST_F(ReportTest, IsTheSameForAnyNumberOfWorkers) {
  const std::string plan = WeatherPlan();
  const std::string one = Page({plan, "--attribute", "--iterations", "130", "--workers", "1"});
  EXPECT_EQ(Page({plan, "--attribute", "--iterations", "130", "--workers", "3"}), one);
}

TEST_F(ReportTest, NeedsNothingFromElsewhere) {
  const std::string page = Page({WeatherPlan(), "--attribute", "--iterations", "20"});
  const std::string markup = Markup(page);
  EXPECT_THAT(markup, HasSubstr("default-src 'none'"));
  EXPECT_THAT(markup, Not(HasSubstr("://")));
  EXPECT_THAT(markup, Not(HasSubstr("src=")));
  EXPECT_THAT(markup, Not(HasSubstr("<link")));
  EXPECT_THAT(page, HasSubstr("Chart.js v3")) << "the library and its licence stand in the page";
  EXPECT_THAT(page, HasSubstr("MIT License"));
}

TEST_F(ReportTest, ItsElementsAreNestedAndItsTablesHaveCaptionsAndHeaders) {
  const std::string markup = Markup(
      Page({WeatherPlan(), "--compare", "--attribute", "--milestone", "M", "--iterations", "40"}));
  EXPECT_EQ(NestingError(markup), "");
  std::size_t tables = 0;
  for (std::size_t at = markup.find("<table"); at != std::string::npos;
       at = markup.find("<table", at + 1)) {
    const std::string table = markup.substr(at, markup.find("</table>", at) - at);
    EXPECT_THAT(table, AllOf(HasSubstr("<caption>"), HasSubstr("<th scope=\"col\""),
                             HasSubstr("<th scope=\"row\"")));
    ++tables;
  }
  EXPECT_GE(tables, 12U);
}

TEST_F(ReportTest, TextsOfThePlanStayTexts) {
  const std::string evil = "</script><script>alert(1)</script><img src=x onerror='x' a=\"b\">&amp;";
  const std::string plan = Path("evil.nplan");
  const std::string odd = "\xE2\x80\xA8 and \xE2\x80\xAE gnp.exe \x01\x7F \xC2\x85 end";
  Output({"import",
          Write("evil.xer", MakeChainXer({{"A<b>", "Dig " + evil, 40},
                                          {"B\"'", odd, 80},
                                          {"M&", "Done " + evil, 0, "TT_FinMile"}})),
          "-o", plan});
  Output({"ranges", plan, "--default", "80,100,140"});
  const std::string weather = Write(
      "evil.json",
      Json{{"events",
            {{{"calendar", "STORM " + evil},
              {"periods",
               {{{"description", evil},
                 {"start", "2027-03-01"},
                 {"finish", "2027-03-14"},
                 {"probability", 1.0},
                 {"min", 2},
                 {"likely", 2},
                 {"max", 2}}}}}}},
           {"windows", Json::array()},
           {"assign", {{{"match", "*"}, {"calendars", {"STORM " + evil}}, {"nosplit", true}}}}}
          .dump());
  Output({"weather", "set", plan, weather});
  const std::string page = Page({plan, "--compare", "--attribute", "--iterations", "40"});
  const std::string markup = Markup(page);
  EXPECT_THAT(markup, Not(HasSubstr("<img")));
  EXPECT_THAT(markup, Not(HasSubstr("alert(1)</script>")));
  EXPECT_THAT(markup, HasSubstr("&lt;/script&gt;&lt;script&gt;alert(1)"));
  EXPECT_EQ(NestingError(markup), "");
  // Control characters have no place in HTML; marks of direction end with the element around them.
  EXPECT_THAT(markup, HasSubstr("<bdi>\xE2\x80\xA8 and \xE2\x80\xAE gnp.exe "));
  EXPECT_EQ(markup.find('\x01'), std::string::npos);
  EXPECT_EQ(markup.find('\x7F'), std::string::npos);
  EXPECT_EQ(markup.find("\xC2\x85"), std::string::npos);

  const std::string data = DataText(page);
  EXPECT_EQ(data.find_first_of("<>&"), std::string::npos);
  EXPECT_EQ(data.find('\xE2'), std::string::npos) << "line separators end strings of old scripts";
  ExpectWithin(Json::parse(data), json, "");
  std::size_t scripts = 0;
  for (std::size_t at = page.find("</script"); at != std::string::npos;
       at = page.find("</script", at + 1)) {
    ++scripts;
  }
  EXPECT_EQ(scripts, 3U) << "the data, the library and the page's own";
}

TEST_F(ReportTest, IsWrittenWholeOrNotAtAll) {
  const std::string plan = WeatherPlan();
  ExpectFailure({"run", plan, "--iterations", "10", "--report", Path("none/r.html")}, 3,
                "none/r.html: cannot be written");
  ExpectFailure({"run", plan, "--iterations", "10", "--json", Path("r.json"), "--report",
                 Path("none/r.html")},
                3, "none/r.html: cannot be written");
  ExpectFailure({"run", plan, "--report", plan}, 2, "--report: expected another file");
  ExpectFailure({"run", plan, "--report", Path("r"), "--json", Path("r")}, 2,
                "--json and --report: expected two different places");
  ExpectFailure({"run", plan, "--report", "-", "--samples", "-"}, 2,
                "--samples and --report: expected two different places");
  EXPECT_THAT(Output({"run", plan, "--iterations", "10", "--report", "-"}),
              ::testing::StartsWith("<!DOCTYPE html>"));
}

/// A run's JSON with so many tasks, milestones and rows of inputs, made by the program for a small
/// plan and then swollen.
TEST_F(ReportTest, CutsLongTablesAndSaysSo) {
  Page({WeatherPlan(), "--compare", "--attribute", "--iterations", "40"});
  const auto swell = [](Json& list, std::size_t count) {
    ASSERT_FALSE(list.empty());
    const Json first = list[0];
    while (list.size() < count) {
      list.push_back(first);
    }
  };
  for (Json& task : json["tasks"]) {
    task["criticality"] = 0.5;
  }
  json["tasks"].erase(json["tasks"].begin());
  swell(json["tasks"], 10000);
  swell(json["milestones"], 1000);
  swell(json["sensitivities"][0]["tasks"], 10000);
  swell(json["critical_chain"]["tasks"], 3000);
  for (Json& input : json["inputs"]) {
    swell(input["rows"], 10000);
  }
  // Ten years of a hundred calendars.
  Json& chance = json["heat_maps"][0]["chance"];
  const Json day = 0.25;
  while (chance.size() < 3650) {
    chance.push_back(chance.size() % 2 == 0 ? day : Json(0.5));
  }
  swell(json["heat_maps"], 100);
  const std::string page = ReportPage(json);
  EXPECT_LT(page.size(), 3'000'000U);
  ExpectFiguresOfTheJson(page, 1000);
  for (const char* file : {"tasks.csv", "milestones.csv", "sensitivity.csv", "critical_chain.csv",
                           "inputs.csv", "heat_map.csv"}) {
    EXPECT_THAT(page, HasSubstr("in <code>" + std::string(file) + "</code>"));
  }
  EXPECT_THAT(page, HasSubstr("Shown are 150 of 1,000 milestones; the other 850 are in"));
}

TEST(ReportText, BytesThatAreNoUtf8AreReplaced) {
  EXPECT_EQ(report::Escaped("a\xFF"
                            "b"),
            "a\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(report::Escaped("Årnes <&>\"'"), "Årnes &lt;&amp;&gt;&quot;&#39;");
  EXPECT_EQ(report::Escaped(""), "");
}

TEST(ReportFigures, AFinishAtMidnightBelongsToTheDayBeforeAndAStartDoesNot) {
  const Json run = {{"at", "2027-03-01T00:00"}, {"nothing", nullptr}, {"small", 0.0004}};
  const report::Figures figures(run);
  EXPECT_THAT(figures.Show("/at", report::Form::kFinish), HasSubstr(">2027-02-28<"));
  EXPECT_THAT(figures.Show("/at", report::Form::kLongFinish), HasSubstr(">28 February 2027<"));
  EXPECT_THAT(figures.Show("/at", report::Form::kStart), HasSubstr(">2027-03-01<"));
  EXPECT_THAT(figures.Show("/nothing", report::Form::kDays), HasSubstr(">–<"));
  EXPECT_THAT(figures.Show("/small", report::Form::kFineShare), HasSubstr(">0.0%<"));
  EXPECT_THAT(figures.Interval("/at", report::Form::kFinish), IsEmpty());
}

}  // namespace
}  // namespace nimbrel::cli
