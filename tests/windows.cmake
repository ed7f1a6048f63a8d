# The tests that Windows has: of what is another there, and of what runs on what is.
nimbrel_test(toolkit LIBRARIES nimbrel_gesture_player nimbrel_toolkit)
nimbrel_test(host LIBRARIES nimbrel_recording_host nimbrel_host_conformance nimbrel_host nimbrel_simulation
                            nimbrel_model)
if(TARGET nimbrel_toolkit_win32)
  add_subdirectory(support/gestures/win32)
  add_subdirectory(tools)
  nimbrel_test(win32 LIBRARIES nimbrel_xer_gestures nimbrel_win32_hands)
  get_property(win32_resources GLOBAL PROPERTY NIMBREL_WIN32_RESOURCES)
  target_sources(test_win32 PRIVATE "${win32_resources}")
endif()
nimbrel_test(win LIBRARIES nimbrel_platform_win)
add_subdirectory(com/excel)
nimbrel_test(com LIBRARIES nimbrel_host_conformance nimbrel_recording_excel nimbrel_exchange nimbrel_trial_host
                           nimbrel_com_served nimbrel_com nimbrel_simulation version)
# It finds the component and the stand-in host beside itself.
set_target_properties(test_com PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${NIMBREL_PROGRAM_FOLDER}")
add_dependencies(test_com nimbrel_component nimbrel_host_server nimbrel_excel_stand_in)
if(TARGET nimbrel_spreadsheet)
  add_subdirectory(support/workbooks)
  # What is left out needs RapidCheck, which is packaged for this machine only, or what other systems
  # alone have: processes that are forked, links, shells.
  nimbrel_test(spreadsheet LIBRARIES nimbrel_workbook_files nimbrel_spreadsheet
               WITHOUT damaged_files_test round_trip_test text_coding_test workbook_test workbook_viewer_test
                       xlsx_writer_posix_test xlsx_writer_properties_test)
  nimbrel_test(stand_in LIBRARIES nimbrel_workbook_files nimbrel_recording_excel nimbrel_recording_host
                                  nimbrel_gesture_play nimbrel_dialog nimbrel_spreadsheet nimbrel_com)
  target_sources(test_stand_in PRIVATE dialog/exchange_round_trip_test.cc com/com_test.cc)
  set_target_properties(test_stand_in PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${NIMBREL_PROGRAM_FOLDER}")
  add_dependencies(test_stand_in nimbrel_host_server nimbrel_excel_stand_in)
endif()
