# What every target of this project gets, and no user of the library inherits.
function(zelmresult_own_target target)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        COMPILE_WARNING_AS_ERROR ${ZELMRESULT_WARNINGS_AS_ERRORS})
    if(WIN32)
        target_compile_definitions(${target} PRIVATE NOMINMAX WIN32_LEAN_AND_MEAN UNICODE _WIN32_WINNT=0x0A00)
    endif()
    if(MSVC)
        target_compile_options(${target} PRIVATE /utf-8 /permissive- /W4 /fp:precise)
    elseif(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
        # A fused multiply-add would round single precision differently from one machine to the next.
        target_compile_options(${target} PRIVATE
            -ffp-contract=off -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
        if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
            # The compiler's own string header causes it in optimised builds.
            target_compile_options(${target} PRIVATE -Wno-restrict)
        endif()
    endif()
endfunction()
