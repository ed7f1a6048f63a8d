#include "nimbrel/report/figures.h"

#include <fmt/format.h>

#include <array>
#include <cstddef>
#include <cstdint>

#include "engine/calendar/instant.h"
#include "nimbrel/command_line.h"

namespace nimbrel::cli::report {
namespace {

using engine::Instant;

const char* FormName(Form form) {
  switch (form) {
    case Form::kFinish:
    case Form::kLongFinish:
      return "finish";
    case Form::kStart:
      return "start";
    case Form::kDays:
      return "days";
    case Form::kShare:
    case Form::kFineShare:
      return "share";
    case Form::kCorrelation:
    case Form::kNumber:
      return "number";
    case Form::kCount:
      return "count";
    case Form::kText:
      break;
  }
  return "text";
}

/// "21 August 2028" of "2028-08-21".
std::string LongDay(const std::string& iso) {
  static constexpr std::array<const char*, 12> kMonths = {
      "January", "February", "March",     "April",   "May",      "June",
      "July",    "August",   "September", "October", "November", "December"};
  const auto month = static_cast<std::size_t>(std::stoi(iso.substr(5, 2)) - 1);
  return fmt::format("{} {} {}", std::stoi(iso.substr(8, 2)), kMonths[month], iso.substr(0, 4));
}

std::string DateIn(const std::string& text, Form form) {
  const Instant instant = engine::ParseIsoText(text);
  if (form == Form::kStart) {
    return engine::ToIsoText(instant.AsStart()).substr(0, 10);
  }
  const std::string day = engine::ToIsoText(instant.AsFinish()).substr(0, 10);
  return form == Form::kLongFinish ? LongDay(day) : day;
}

std::string TextIn(const Json& value, Form form) {
  switch (form) {
    case Form::kFinish:
    case Form::kLongFinish:
    case Form::kStart:
      return DateIn(value.get<std::string>(), form);
    case Form::kDays:
      return fmt::format("{:.1f}", Rounded(value.get<double>(), 1));
    case Form::kShare:
      return fmt::format("{:.0f}%", Rounded(100 * value.get<double>(), 0));
    case Form::kFineShare:
      return fmt::format("{:.1f}%", Rounded(100 * value.get<double>(), 1));
    case Form::kCorrelation:
      return fmt::format("{:+.2f}", Rounded(value.get<double>(), 2));
    case Form::kNumber:
      return fmt::format("{:.2f}", Rounded(value.get<double>(), 2));
    case Form::kCount:
      return Grouped(value.get<std::int64_t>());
    case Form::kText:
      break;
  }
  return value.is_string() ? Isolated(value.get<std::string>()) : Escaped(value.dump());
}

/// The text with every sequence of bytes that is no UTF-8 replaced.
std::string Repaired(const std::string& text) {
  const std::string quoted = Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
  return Json::parse(quoted).get<std::string>();
}

}  // namespace

std::string Escaped(const std::string& text) {
  const std::string repaired = Repaired(text);
  std::string html;
  for (std::size_t i = 0; i < repaired.size(); ++i) {
    const char c = repaired[i];
    const auto byte = static_cast<unsigned char>(c);
    const bool is_control = byte < 0x20 && c != '\t' && c != '\n';
    // U+0080 to U+009F are two bytes.
    const bool is_second_control = byte == 0xC2 && i + 1 < repaired.size() &&
                                   static_cast<unsigned char>(repaired[i + 1]) < 0xA0;
    if (c == '&') {
      html += "&amp;";
    } else if (c == '<') {
      html += "&lt;";
    } else if (c == '>') {
      html += "&gt;";
    } else if (c == '"') {
      html += "&quot;";
    } else if (c == '\'') {
      html += "&#39;";
    } else if (is_control || byte == 0x7F || is_second_control) {
      html += "\xEF\xBF\xBD";
      i += is_second_control ? 1 : 0;
    } else {
      html += c;
    }
  }
  return html;
}

std::string Isolated(const std::string& text) {
  return "<bdi>" + Escaped(text) + "</bdi>";
}

bool Figures::Has(const std::string& place) const {
  const Json::json_pointer pointer(place);
  return run_.contains(pointer) && !run_.at(pointer).is_null();
}

const Json& Figures::At(const std::string& place) const {
  return run_.at(Json::json_pointer(place));
}

std::size_t Figures::CountAt(const std::string& place) const {
  return Has(place) ? At(place).size() : 0;
}

std::string Figures::Plain(const std::string& place, Form form) const {
  return Has(place) ? TextIn(At(place), form) : "–";
}

std::string Figures::Show(const std::string& place, Form form) const {
  return fmt::format("<span data-json=\"{}\" data-as=\"{}\">{}</span>", place, FormName(form),
                     Plain(place, form));
}

std::string Figures::Interval(const std::string& place, Form form) const {
  if (!Has(place + "_low")) {
    return "";
  }
  return Show(place + "_low", form) + " to " + Show(place + "_high", form);
}

std::string Figures::WithInterval(const std::string& place, Form form) const {
  const std::string interval = Interval(place, form);
  return Show(place, form) + (interval.empty() ? "" : "<small>" + interval + "</small>");
}

void HtmlTable::AddRow(const std::vector<std::string>& cells) {
  rows_ += "<tr>";
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const char* alignment = columns_[i].is_number ? " class=\"n\"" : "";
    rows_ += i == 0 ? fmt::format("<th scope=\"row\"{}>{}</th>", alignment, cells[i])
                    : fmt::format("<td{}>{}</td>", alignment, cells[i]);
  }
  rows_ += "</tr>\n";
}

std::string HtmlTable::Html() const {
  std::string head;
  for (const Column& column : columns_) {
    head += fmt::format("<th scope=\"col\"{}>{}</th>", column.is_number ? " class=\"n\"" : "",
                        Escaped(column.title));
  }
  return fmt::format(
      "<div class=\"scroll\" role=\"group\" aria-label=\"Table: {0}\" tabindex=\"0\"><table>"
      "<caption>{0}</caption><thead><tr>{1}</tr></thead>\n<tbody>{2}</tbody></table></div>\n",
      Escaped(caption_), head, rows_);
}

std::string Behind(const std::string& summary, const std::string& html) {
  return fmt::format("<details><summary>{}</summary>\n{}</details>\n", Escaped(summary), html);
}

std::string CutNote(std::size_t shown, std::size_t all, const std::string& of,
                    const std::string& file) {
  if (shown >= all) {
    return "";
  }
  return fmt::format(
      "<p class=\"note\">Shown are {} of {} {}; the other {} are in <code>{}</code> of "
      "<code>nimbrel run --csv FOLDER</code>.</p>\n",
      Grouped(static_cast<std::int64_t>(shown)), Grouped(static_cast<std::int64_t>(all)), of,
      Grouped(static_cast<std::int64_t>(all - shown)), file);
}

}  // namespace nimbrel::cli::report
