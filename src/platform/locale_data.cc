#include <array>

#include "platform/locale.h"

namespace nimbrel::platform {
namespace {

// Between groups of three digits in French; not to be broken at.
constexpr const char* kNoBreakSpace = "\u00A0";

Locale AmericanEnglish() {
  Locale locale;
  locale.name = "en-US";
  locale.months = {"January", "February", "March",     "April",   "May",      "June",
                   "July",    "August",   "September", "October", "November", "December"};
  locale.short_months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  locale.weekdays = {"Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday", "Sunday"};
  locale.short_weekdays = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
  return locale;
}

Locale BritishEnglish() {
  Locale locale = AmericanEnglish();
  locale.name = "en-GB";
  locale.order = DateOrder::kDayMonthYear;
  locale.short_date = "dd/mm/yyyy";
  return locale;
}

Locale German() {
  Locale locale;
  locale.name = "de-DE";
  locale.months = {"Januar", "Februar", "März",      "April",   "Mai",      "Juni",
                   "Juli",   "August",  "September", "Oktober", "November", "Dezember"};
  locale.short_months = {"Jan", "Feb", "Mrz", "Apr", "Mai", "Jun",
                         "Jul", "Aug", "Sep", "Okt", "Nov", "Dez"};
  locale.weekdays = {"Montag",  "Dienstag", "Mittwoch", "Donnerstag",
                     "Freitag", "Samstag",  "Sonntag"};
  locale.short_weekdays = {"Mo", "Di", "Mi", "Do", "Fr", "Sa", "So"};
  locale.order = DateOrder::kDayMonthYear;
  locale.short_date = "dd/mm/yyyy";
  locale.date_separator = '.';
  locale.decimal = ",";
  locale.thousands = ".";
  return locale;
}

Locale French() {
  Locale locale;
  locale.name = "fr-FR";
  locale.months = {"janvier", "février", "mars",      "avril",   "mai",      "juin",
                   "juillet", "août",    "septembre", "octobre", "novembre", "décembre"};
  locale.short_months = {"janv.", "févr.", "mars",  "avr.", "mai",  "juin",
                         "juil.", "août",  "sept.", "oct.", "nov.", "déc."};
  locale.weekdays = {"lundi", "mardi", "mercredi", "jeudi", "vendredi", "samedi", "dimanche"};
  locale.short_weekdays = {"lun.", "mar.", "mer.", "jeu.", "ven.", "sam.", "dim."};
  locale.order = DateOrder::kDayMonthYear;
  locale.short_date = "dd/mm/yyyy";
  locale.decimal = ",";
  locale.thousands = kNoBreakSpace;
  return locale;
}

Locale Spanish() {
  Locale locale;
  locale.name = "es-ES";
  locale.months = {"enero", "febrero", "marzo",      "abril",   "mayo",      "junio",
                   "julio", "agosto",  "septiembre", "octubre", "noviembre", "diciembre"};
  locale.short_months = {"ene", "feb", "mar",  "abr", "may", "jun",
                         "jul", "ago", "sept", "oct", "nov", "dic"};
  locale.weekdays = {"lunes", "martes", "miércoles", "jueves", "viernes", "sábado", "domingo"};
  locale.short_weekdays = {"lun", "mar", "mié", "jue", "vie", "sáb", "dom"};
  locale.order = DateOrder::kDayMonthYear;
  locale.short_date = "dd/mm/yyyy";
  locale.decimal = ",";
  locale.thousands = ".";
  return locale;
}

Locale Italian() {
  Locale locale;
  locale.name = "it-IT";
  locale.months = {"gennaio", "febbraio", "marzo",     "aprile",  "maggio",   "giugno",
                   "luglio",  "agosto",   "settembre", "ottobre", "novembre", "dicembre"};
  locale.short_months = {"gen", "feb", "mar", "apr", "mag", "giu",
                         "lug", "ago", "set", "ott", "nov", "dic"};
  locale.weekdays = {"lunedì", "martedì", "mercoledì", "giovedì", "venerdì", "sabato", "domenica"};
  locale.short_weekdays = {"lun", "mar", "mer", "gio", "ven", "sab", "dom"};
  locale.order = DateOrder::kDayMonthYear;
  locale.short_date = "dd/mm/yyyy";
  locale.decimal = ",";
  locale.thousands = ".";
  return locale;
}

Locale Dutch() {
  Locale locale;
  locale.name = "nl-NL";
  locale.months = {"januari", "februari", "maart",     "april",   "mei",      "juni",
                   "juli",    "augustus", "september", "oktober", "november", "december"};
  locale.short_months = {"jan", "feb", "mrt", "apr", "mei", "jun",
                         "jul", "aug", "sep", "okt", "nov", "dec"};
  locale.weekdays = {"maandag", "dinsdag",  "woensdag", "donderdag",
                     "vrijdag", "zaterdag", "zondag"};
  locale.short_weekdays = {"ma", "di", "wo", "do", "vr", "za", "zo"};
  locale.order = DateOrder::kDayMonthYear;
  locale.short_date = "d/m/yyyy";
  locale.date_separator = '-';
  locale.decimal = ",";
  locale.thousands = ".";
  return locale;
}

Locale Portuguese() {
  Locale locale;
  locale.name = "pt-PT";
  locale.months = {"janeiro", "fevereiro", "março",    "abril",   "maio",     "junho",
                   "julho",   "agosto",    "setembro", "outubro", "novembro", "dezembro"};
  locale.short_months = {"jan", "fev", "mar", "abr", "mai", "jun",
                         "jul", "ago", "set", "out", "nov", "dez"};
  locale.weekdays = {"segunda-feira", "terça-feira", "quarta-feira", "quinta-feira",
                     "sexta-feira",   "sábado",      "domingo"};
  locale.short_weekdays = {"seg", "ter", "qua", "qui", "sex", "sáb", "dom"};
  locale.order = DateOrder::kDayMonthYear;
  locale.short_date = "dd/mm/yyyy";
  locale.decimal = ",";
  locale.thousands = kNoBreakSpace;
  return locale;
}

}  // namespace

std::span<const Locale> KnownLocales() {
  static const std::array<Locale, 8> kLocales = {AmericanEnglish(), BritishEnglish(), German(),
                                                 French(),          Spanish(),        Italian(),
                                                 Dutch(),           Portuguese()};
  return kLocales;
}

}  // namespace nimbrel::platform
