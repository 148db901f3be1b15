# The trouble-code table is compiled into obd. dtcgen validates the TSV and
# turns it into a C++ source at build time; a bad row fails the build.
add_executable(dtcgen ${CMAKE_SOURCE_DIR}/tools/dtcgen/dtcgen.cpp)

set(DTC_TSV ${CMAKE_SOURCE_DIR}/data/dtc/dtc-descriptions.tsv)
set(DTC_TABLE_CPP ${CMAKE_BINARY_DIR}/generated/dtctable.cpp)

add_custom_command(
    OUTPUT ${DTC_TABLE_CPP}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/generated
    COMMAND dtcgen ${DTC_TSV} ${DTC_TABLE_CPP}
    DEPENDS dtcgen ${DTC_TSV}
    COMMENT "Generating the trouble-code table from dtc-descriptions.tsv"
    VERBATIM)

target_sources(obd PRIVATE ${DTC_TABLE_CPP})
