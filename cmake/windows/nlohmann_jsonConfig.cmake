# The headers of the building machine, without those around them, which are
# another system's.
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/include)
file(CREATE_LINK /usr/include/nlohmann ${PROJECT_BINARY_DIR}/include/nlohmann
  SYMBOLIC)
add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
target_include_directories(nlohmann_json::nlohmann_json
  INTERFACE ${PROJECT_BINARY_DIR}/include)
