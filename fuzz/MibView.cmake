# The MIB view's fuzz target, included by fuzz/CMakeLists.txt (which
# defines qos_add_fuzzer). Arbitrary OIDs into GET and GETNEXT over a
# populated model built by the view's test support.
qos_add_fuzzer(MibViewFuzzer DEPS qoshostsnmp qossnmpmodel)
target_include_directories(MibViewFuzzer PRIVATE ${PROJECT_SOURCE_DIR}/tests)
