# Apart from the settings, so that who only has settings needs neither the secure items nor their libraries.
zorvan_library(UserKeychain
  SOURCES UserKeychain.cpp
  USES Foundation PropertyListFiles Security)
target_link_libraries(UserKeychain PRIVATE Zorvan::Bundles)
zorvan_build_along(UserKeychain SecretServiceKeyring)
