#pragma once

#include <curl/curl.h>

namespace querlin {

/// What is used of libcurl, each function by its own name. The library is loaded when the first request is
/// made: linked plainly, with all that it depends on, it would more than double the time to the program's
/// icon.
struct CurlLibrary {
    /// Loads and initialises the library, once for the process; nothing if it isn't here or won't start. Any
    /// thread; whoever comes second waits for the first.
    static const CurlLibrary* get();

    decltype(&::curl_global_init) globalInit = nullptr;
    decltype(&::curl_easy_init) easyInit = nullptr;
    decltype(&::curl_easy_setopt) easySetopt = nullptr;
    decltype(&::curl_easy_getinfo) easyGetinfo = nullptr;
    decltype(&::curl_easy_nextheader) easyNextheader = nullptr;
    decltype(&::curl_easy_strerror) easyStrerror = nullptr;
    decltype(&::curl_easy_cleanup) easyCleanup = nullptr;
    decltype(&::curl_multi_init) multiInit = nullptr;
    decltype(&::curl_multi_add_handle) multiAddHandle = nullptr;
    decltype(&::curl_multi_remove_handle) multiRemoveHandle = nullptr;
    decltype(&::curl_multi_perform) multiPerform = nullptr;
    decltype(&::curl_multi_poll) multiPoll = nullptr;
    decltype(&::curl_multi_wakeup) multiWakeup = nullptr;
    decltype(&::curl_multi_info_read) multiInfoRead = nullptr;
    decltype(&::curl_multi_cleanup) multiCleanup = nullptr;
};

} // namespace querlin
