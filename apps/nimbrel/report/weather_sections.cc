#include <fmt/format.h>

#include <cstddef>
#include <string>

#include "nimbrel/report/sections.h"

namespace nimbrel::cli::report {
namespace {

std::string CostTable(const Figures& figures) {
  HtmlTable table("Cost in days: what the finish is later by", {{"Weather"},
                                                                {"compared"},
                                                                {"mean", true},
                                                                {"P50", true},
                                                                {"P80", true},
                                                                {"P90", true},
                                                                {"P80 of the finish", true}});
  const auto row = [&](const std::string& name, const std::string& way, const std::string& cost,
                       const std::string& finish) {
    table.AddRow({name, way, figures.WithInterval(cost + "/mean", Form::kDays),
                  figures.WithInterval(cost + "/p50", Form::kDays),
                  figures.WithInterval(cost + "/p80", Form::kDays),
                  figures.WithInterval(cost + "/p90", Form::kDays),
                  figures.WithInterval(finish + "/finish/p80", Form::kFinish)});
  };
  row("all weather", "with all less without any", "/attribution/cost_days", "/attribution/all");
  for (std::size_t i = 0; i < figures.CountAt("/attribution/calendars"); ++i) {
    const std::string place = fmt::format("/attribution/calendars/{}", i);
    const std::string name = figures.Show(place + "/name", Form::kText);
    row(name, "with all less all but it", place + "/left_out/cost_days", place + "/left_out");
    row(name, "it alone less without any", place + "/alone/cost_days", place + "/alone");
  }
  return table.Html();
}

std::string LedgerTable(const Figures& figures) {
  HtmlTable table("Mean days an iteration, by what became of them", {{"Calendar"},
                                                                     {"kind"},
                                                                     {"lost", true},
                                                                     {"no work anyway", true},
                                                                     {"none under way", true},
                                                                     {"absorbed by float", true},
                                                                     {"moving the finish", true}});
  for (std::size_t i = 0; i < figures.CountAt("/ledger"); ++i) {
    const std::string place = fmt::format("/ledger/{}", i);
    const auto days = [&](const char* key) { return figures.Show(place + key, Form::kDays); };
    table.AddRow({figures.Show(place + "/name", Form::kText),
                  figures.Show(place + "/kind", Form::kText), days("/lost_days"), days("/off_days"),
                  days("/idle_days"), days("/absorbed_days"), days("/moving_days")});
  }
  return table.Html();
}

std::string LostDaysTable(const Figures& figures) {
  HtmlTable table("Days made non-working on each calendar in an iteration",
                  {{"Calendar"}, {"kind"}, {"mean", true}, {"P80", true}});
  for (std::size_t i = 0; i < figures.CountAt("/calendars"); ++i) {
    const std::string place = fmt::format("/calendars/{}", i);
    table.AddRow({figures.Show(place + "/name", Form::kText),
                  figures.Show(place + "/kind", Form::kText),
                  figures.Show(place + "/lost_days/mean", Form::kDays),
                  figures.WithInterval(place + "/lost_days/p80", Form::kDays)});
  }
  return table.Html();
}

/// Of calendars whose days all stand under one heading, because nobody has them.
std::string UnassignedNote(const Figures& figures) {
  std::string notes;
  for (std::size_t i = 0; i < figures.CountAt("/ledger"); ++i) {
    const std::string place = fmt::format("/ledger/{}", i);
    if (figures.At(place + "/tasks") == 0) {
      notes += fmt::format(
          "<p class=\"note\">{} is assigned to no task: all its days count as no work "
          "anyway.</p>\n",
          figures.Show(place + "/name", Form::kText));
    }
  }
  return notes;
}

std::string LedgerPart(const Figures& figures) {
  return "<h3>What became of the lost days</h3>\n" +
         ChartFigure(
             "ledger", "bars",
             "Stacked bars: the mean days that each calendar loses in an iteration, by what became "
             "of them. The table below has all numbers.",
             "Every lost day is in one of four parts: no task of the calendar works on it anyway; "
             "none of its tasks was under way; it held up tasks that had float; or it moved the "
             "finish. What a calendar costs is another question: without it, other weather may "
             "take the place of its days, or work may come to stand where there is none.",
             Behind("Numbers of the ledger", LedgerTable(figures))) +
         UnassignedNote(figures);
}

}  // namespace

std::string CostSection(const Figures& figures, const FinishPlaces& places) {
  const std::string title = "What the weather costs";
  if (!places.weather) {
    return Section("cost", title, "<p>The run had no weather.</p>\n");
  }
  std::string body;
  if (figures.Has("/attribution") && figures.CountAt("/attribution/calendars") == 0) {
    body = "<p>The plan has no weather calendars.</p>\n";
  } else if (figures.Has("/attribution")) {
    body =
        "<h3>By calendar</h3>\n" +
        ChartFigure(
            "cost", "bars",
            "Tornado: how many days each weather calendar costs at P80, with the others and "
            "alone. The table below has all numbers.",
            "With the others: how much earlier P80 would be if this calendar alone took no effect. "
            "Alone: how much later P80 is with this calendar and no other weather. All on the same "
            "samples. The bars need not add up to the whole: on a day that two calendars lose, "
            "neither makes a difference by itself.",
            Behind("Numbers of the cost", CostTable(figures))) +
        LedgerPart(figures);
  } else {
    body = Missing("What each calendar costs, and what became of its days", "--attribute");
  }
  if (figures.CountAt("/calendars") > 0) {
    body += "<h3>Lost days</h3>\n" + LostDaysTable(figures);
  }
  return Section("cost", title, body);
}

}  // namespace nimbrel::cli::report
