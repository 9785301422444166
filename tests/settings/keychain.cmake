add_executable(standard-keychain StandardKeychain.cpp)
target_link_libraries(standard-keychain PRIVATE zorvan_build_flags Zorvan::UserKeychain)
zorvan_test(keychain-test
  SOURCES
    UserKeychainTest.cpp
    ${PROJECT_SOURCE_DIR}/tests/platform/messagebus/Process.cpp
  USES SettingsDatabase UserKeychain)
target_include_directories(keychain-test PRIVATE ${PROJECT_SOURCE_DIR}/tests/platform/messagebus)
add_dependencies(keychain-test standard-keychain)
target_compile_definitions(keychain-test PRIVATE
  STANDARD_KEYCHAIN="$<TARGET_FILE:standard-keychain>")
