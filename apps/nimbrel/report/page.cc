#include "nimbrel/report/page.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "nimbrel/report/assets.h"
#include "nimbrel/report/figures.h"
#include "nimbrel/report/sections.h"

namespace nimbrel::cli {
namespace report {

std::string Section(const std::string& id, const std::string& title, const std::string& body) {
  return fmt::format(
      "<section id=\"{0}\" aria-labelledby=\"{0}-title\">\n<h2 id=\"{0}-title\">{1}</h2>\n{2}"
      "</section>\n\n",
      id, title, body);
}

std::string ChartFigure(const std::string& chart, const std::string& height,
                        const std::string& label, const std::string& reading,
                        const std::string& behind) {
  return fmt::format(
      "<figure><div class=\"canvas {}\"><canvas role=\"img\" aria-label=\"{}\" data-chart=\"{}\">"
      "</canvas></div>\n<figcaption>{}</figcaption>\n{}</figure>\n",
      height, Escaped(label), chart, reading, behind);
}

std::string Missing(const std::string& what, const std::string& option) {
  return fmt::format(
      "<p class=\"missing\">{} was not computed; <code>nimbrel run {}</code> does.</p>\n", what,
      option);
}

namespace {

/// What the charts are drawn from: parts of the run's JSON, lists cut at their ends.
Json ChartData(const Figures& figures) {
  Json data;
  for (const char* key : {"weather", "deterministic", "finish", "without_weather", "distribution",
                          "attribution", "ledger"}) {
    const std::string place = std::string("/") + key;
    if (figures.Has(place)) {
      data[key] = figures.At(place);
    }
  }
  data["sensitivities"] = Json::array();
  for (const Json& target : figures.At("/sensitivities")) {
    Json cut = target;
    Json& tasks = cut["tasks"];
    if (tasks.size() > kTornadoTasks) {
      tasks.erase(tasks.begin() + static_cast<std::ptrdiff_t>(kTornadoTasks), tasks.end());
    }
    data["sensitivities"].push_back(std::move(cut));
  }
  data["heat_maps"] = Json::array();
  const std::vector<std::size_t> shown = HeatMapsShown(figures);
  for (std::size_t i = 0; i < figures.CountAt("/heat_maps"); ++i) {
    if (std::find(shown.begin(), shown.end(), i) != shown.end()) {
      data["heat_maps"].push_back(figures.At(fmt::format("/heat_maps/{}", i)));
    } else {
      data["heat_maps"].push_back(nullptr);
    }
  }
  return data;
}

/// JSON for a script element: nothing in it can end the element, nor be read as markup.
std::string InScript(const Json& data) {
  std::string text;
  for (const char c : data.dump(-1, ' ', true, Json::error_handler_t::replace)) {
    if (c == '<' || c == '>' || c == '&') {
      text += fmt::format("\\u{:04x}", static_cast<unsigned>(c));
    } else {
      text += c;
    }
  }
  return text;
}

std::string Head(const std::string& title) {
  return fmt::format(
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; script-src "
      "'unsafe-inline'; style-src 'unsafe-inline'\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<meta name=\"color-scheme\" content=\"light dark\">\n"
      "<title>{}: schedule risk with weather</title>\n<style>\n{}</style>\n</head>\n",
      Escaped(title), PageStyle());
}

std::string Header(const Figures& figures) {
  const bool has_title = !figures.At("/title").get<std::string>().empty();
  std::string facts = "<dt>Plan</dt><dd>" + figures.Show("/plan", Form::kText) + "</dd>";
  if (figures.Has("/data_date")) {
    facts += "<dt>Data date</dt><dd>" + figures.Show("/data_date", Form::kStart) + "</dd>";
  }
  facts += "<dt>Iterations</dt><dd>" + figures.Show("/iterations", Form::kCount) + "</dd>" +
           "<dt>Seed</dt><dd>" + figures.Show("/seed", Form::kText) + "</dd>" +
           "<dt>Nimbrel</dt><dd>" + figures.Show("/version", Form::kText) + "</dd>";
  return "<header>\n<p class=\"kind\">Schedule risk analysis with weather</p>\n<h1>" +
         figures.Show(has_title ? "/title" : "/plan", Form::kText) + "</h1>\n<dl>" + facts +
         "</dl>\n<button type=\"button\" id=\"theme\" hidden>Dark</button>\n</header>\n";
}

/// Links to the sections that are there.
std::string Contents(const std::string& body) {
  static constexpr std::array<std::pair<const char*, const char*>, 11> kSections = {
      {{"summary", "In short"},
       {"warnings", "Warnings"},
       {"finish", "Finish"},
       {"cost", "Cost of weather"},
       {"season", "Seasons"},
       {"drivers", "Drivers"},
       {"milestones", "Milestones"},
       {"chain", "Critical chain"},
       {"tasks", "Tasks"},
       {"inputs", "Inputs"},
       {"making", "Method"}}};
  std::string links;
  for (const auto& [id, title] : kSections) {
    if (body.find(fmt::format("<section id=\"{}\"", id)) != std::string::npos) {
      links += fmt::format("<li><a href=\"#{}\">{}</a></li>", id, title);
    }
  }
  return "<nav aria-label=\"Contents\"><ul>" + links + "</ul></nav>\n";
}

}  // namespace
}  // namespace report

std::string ReportPage(const Json& run) {
  using namespace report;
  const Figures figures(run);
  const FinishPlaces places(figures);
  const std::string body = SummarySection(figures, places) + WarningSection(figures) +
                           FinishSection(figures, places) + CostSection(figures, places) +
                           SeasonSection(figures, places) + DriverSection(figures) +
                           MilestoneSection(figures) + ChainSection(figures, places) +
                           TaskSection(figures) + InputSection(figures) + MakingSection(figures);
  const std::string title = run.at("title").get<std::string>();
  std::string page = Head(title.empty() ? run.at("plan").get<std::string>() : title);
  page +=
      "<body>\n<a class=\"skip\" href=\"#main\">Skip to the results</a>\n" + Header(figures) +
      Contents(body) + "<main id=\"main\" tabindex=\"-1\">\n" +
      "<noscript><p class=\"missing\">The charts are drawn by a script, which does not run here. "
      "The tables below them have all numbers.</p></noscript>\n" +
      body + "</main>\n<p class=\"paper\" hidden></p>\n";
  page += "<script type=\"application/json\" id=\"run\">" + InScript(ChartData(figures)) +
          "</script>\n<script>\n";
  page += ChartScript();
  page += "</script>\n<script>\n";
  page += PageScript();
  page += "</script>\n</body>\n</html>\n";
  return page;
}

}  // namespace nimbrel::cli
