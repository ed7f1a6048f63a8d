#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/objects/face.h"
#include "host/corvane8.h"

namespace nimbrel::engine {

class PlanPropertiesObject final : public Face<Corvane8::PlanProperties> {
 public:
  using Face::Face;
  std::string get_Title() override;
  platform::Date get_AnchorDate() override;
  platform::Date get_ReferenceDate() override;
  Corvane8::Long get_TimeUnit() override;
};

class PlanDisplayObject final : public Face<Corvane8::PlanDisplay> {
 public:
  using Face::Face;
  Corvane8::Long get_DateFormat() override;
  Corvane8::Long get_HoursPerDay() override;
};

class RiskOptionsObject final : public Face<Corvane8::RiskOptions> {
 public:
  using Face::Face;
  bool get_RecalculateAfterMove() override;
};

class RiskAnalysisObject final : public Face<Corvane8::RiskAnalysis> {
 public:
  explicit RiskAnalysisObject(PlanSession& session) : Face(session), options_(session) {}
  platform::Ref<Corvane8::RiskOptions> get_Options() override;
  double get_Rnd() override;

 private:
  RiskOptionsObject options_;
};

class ChangeMonitorObject final : public Face<Corvane8::ChangeMonitor> {
 public:
  using Face::Face;
  void put_Enabled(bool value) override;
};

/// What CustomFields.Add gives: a field is known by its name alone, so the object has no operation.
class CustomFieldObject final : public Face<platform::Object> {
 public:
  using Face::Face;
};

class CustomFieldsObject final : public Face<Corvane8::CustomFields> {
 public:
  using Face::Face;
  platform::Ref<platform::Object> Add(std::string_view name, Corvane8::Long code) override;

 private:
  std::vector<std::unique_ptr<CustomFieldObject>> added_;
};

class PlanTasksObject final : public Face<Corvane8::PlanTasks> {
 public:
  using Face::Face;
  platform::Ref<Corvane8::Task> Add() override;
  platform::Ref<Corvane8::Task> Item(const platform::Variant& key) override;
  void Remove(const platform::Variant& key) override;
  std::vector<platform::Ref<Corvane8::Task>> Elements() override;

 private:
  std::int32_t Position(const platform::Variant& key) const;
};

class PlanCalendarsObject final : public Face<Corvane8::PlanCalendars> {
 public:
  using Face::Face;
  platform::Ref<Corvane8::Calendar> Add(std::string_view name) override;
  platform::Ref<Corvane8::Calendar> Item(const platform::Variant& key) override;
  void Remove(const platform::Variant& key) override;
  std::vector<platform::Ref<Corvane8::Calendar>> Elements() override;

 private:
  std::int32_t Position(const platform::Variant& key) const;
};

class PlanRiskCalendarsObject final : public Face<Corvane8::PlanRiskCalendars> {
 public:
  using Face::Face;
  platform::Ref<Corvane8::RiskCalendar> Add(std::string_view name) override;
  platform::Ref<Corvane8::RiskCalendar> Item(const platform::Variant& key) override;
  void Remove(const platform::Variant& key) override;
  std::vector<platform::Ref<Corvane8::RiskCalendar>> Elements() override;

 private:
  std::int32_t Position(const platform::Variant& key) const;
};

/// The plan as the object model sees it.
class PlanObject final : public Face<Corvane8::Plan> {
 public:
  explicit PlanObject(PlanSession& session);

  std::string get_Name() override;
  platform::Ref<Corvane8::PlanRiskCalendars> get_RiskCalendars() override;
  platform::Ref<Corvane8::PlanProperties> get_Properties() override;
  platform::Ref<Corvane8::RiskAnalysis> get_RiskAnalysis() override;
  platform::Ref<Corvane8::ChangeMonitor> get_ChangeMonitor() override;
  platform::Ref<Corvane8::PlanTasks> get_Tasks() override;
  platform::Ref<Corvane8::PlanCalendars> get_Calendars() override;
  void Recalculate() override;
  void put_AutoRecalculate(bool value) override;
  void RecalculateFinish() override;
  void SetOption(std::string_view section, std::string_view group, std::string_view key,
                 std::string_view value) override;
  std::string GetOption(std::string_view section, std::string_view group, std::string_view key,
                        std::string_view default_value) override;
  platform::Ref<Corvane8::CustomFields> get_CustomFields() override;
  platform::Ref<Corvane8::PlanDisplay> get_Display() override;

 private:
  PlanPropertiesObject properties_;
  PlanDisplayObject display_;
  RiskAnalysisObject risk_analysis_;
  ChangeMonitorObject change_monitor_;
  CustomFieldsObject custom_fields_;
  PlanTasksObject tasks_;
  PlanCalendarsObject calendars_;
  PlanRiskCalendarsObject risk_calendars_;
};

}  // namespace nimbrel::engine
