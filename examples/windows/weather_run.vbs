' A risk run with weather on the stand-in host, as a host's own program would start it.
'
' Before: regsvr32 Nimbrel.dll, and NimbrelTrialHost.exe /RegServer.
' Then:   cscript //nologo weather_run.vbs
Option Explicit

Dim trial, host, plan, period, task, calendar, risk_calendar, added, duration, nimbrel
Dim dry, wet

' A plan of two tasks of ten and five days. With a host of your own this is your user's plan.
Set trial = CreateObject("Corvane8.TrialHost")
trial.NewPlan 1, 8
trial.AddTask "FOUNDATION", 8, 10, 14, 100, ""
trial.AddTask "TOWER", 5, 5, 5, 100, "FOUNDATION"
trial.OpenPlan
Set host = CreateObject("Corvane8.Application")
Set plan = host.ActivePlan

' Weather, as the dialog would store it: a calendar with its risk calendar, and a period in January
' that takes four to eight of its days.
plan.SetOption "NIMBRELMOD", "Options", "IsWeatherPlan", "TRUE"
plan.CustomFields.Add "Weather-start", 2, added
plan.CustomFields.Add "Weather-end", 3, added
plan.Calendars.Add "NORTH SEA", calendar
plan.RiskCalendars.Add "NORTH SEA", risk_calendar
Set risk_calendar.Calendar = calendar
plan.Tasks.Add task
task.ID = "WEATHER"
task.UserFields.SetValue 2, "weather", "tasktype", "10"
plan.Tasks.Add period
period.MoveUnder 0, task
Set period.Calendar = calendar
period.UserFields.SetValue 2, "weather", "tasktype", "1"
period.UserFields.SetCustom "Weather-start", DateSerial(2027, 1, 4)
period.UserFields.SetCustom "Weather-end", DateSerial(2027, 1, 29)
period.Duration -1, duration
duration.Minimum = 4
duration.Likely = 6
duration.Maximum = 8
plan.Tasks.Item "FOUNDATION", task
task.RiskCalendars.Add "NORTH SEA", added
added.Value = 0

' The same run without and with the component.
trial.RunAnalysis 20, 1
dry = trial.MeanFinish
Set nimbrel = CreateObject("Nimbrel.clsNimbrel")
nimbrel.LaunchStartCorvane
trial.RunAnalysis 20, 1
wet = trial.MeanFinish
nimbrel.LaunchStopCorvane
trial.RunAnalysis 20, 1

If wet > dry Then WScript.Echo "Weather moves the finish."
If trial.MeanFinish = dry Then WScript.Echo "Stopped, it moves nothing."
