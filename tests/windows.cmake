# The tests that Windows has: of what is another there, and of what runs on what is.
nimbrel_test(toolkit LIBRARIES nimbrel_gesture_player nimbrel_toolkit)
nimbrel_test(host LIBRARIES nimbrel_recording_host nimbrel_host_conformance nimbrel_host nimbrel_simulation
                            nimbrel_model)
if(TARGET nimbrel_toolkit_win32)
  nimbrel_test(win32 LIBRARIES nimbrel_gesture_player nimbrel_toolkit_win32)
endif()
nimbrel_test(com LIBRARIES nimbrel_com)
