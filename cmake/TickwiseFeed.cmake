# tickwise_check_feed(URL KEY): ends the configuration of a build whose updater could not work: its feed has to be behind https, and
# there has to be the key that its packages are verified with. A build without a feed has no updater.
function(tickwise_check_feed url key)
    if(url STREQUAL "")
        return()
    endif()
    if(NOT url MATCHES "^https://[^/?#]")
        message(FATAL_ERROR "TICKWISE_FEED_URL is not an https address: ${url}")
    endif()
    string(LENGTH "${key}" length)
    if(NOT key MATCHES "^[A-Za-z0-9+/]+=$" OR NOT length EQUAL 44)
        message(FATAL_ERROR "TICKWISE_FEED_KEY is not the base64 text of an Ed25519 public key")
    endif()
endfunction()

if(CMAKE_SCRIPT_MODE_FILE)
    tickwise_check_feed("${URL}" "${KEY}")
endif()
