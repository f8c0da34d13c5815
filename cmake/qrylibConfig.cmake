# find_package(qrylib): qrylib::qrylib, qrylib::platform where the workstation platform was installed, and
# qrylib::qrytext where the companion was.
include(${CMAKE_CURRENT_LIST_DIR}/qrylibTargets.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/qrytextTargets.cmake OPTIONAL)
