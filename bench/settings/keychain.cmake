zorvan_bench(secure-items-bench SOURCES SecureItemsBench.cpp USES UserKeychain NEEDS sqlite3)
