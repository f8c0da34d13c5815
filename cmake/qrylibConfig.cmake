# find_package(qrylib): qrylib::qrylib, and qrylib::platform where the workstation platform was installed.
include(${CMAKE_CURRENT_LIST_DIR}/qrylibTargets.cmake)
