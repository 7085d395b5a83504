# Properties that every target of this project has. Nothing here reaches a
# consumer of the library.

# Language level and warnings of the project's own code.
function(photarium_own_code target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  # No fused multiply-add: equal input gives equal bytes on every machine.
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -ffp-contract=off
    # GCC 12 warns of "text" + string in optimised builds, without a cause.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
    $<$<BOOL:${PHOTARIUM_WERROR}>:-Werror>)
endfunction()
