// Whether the picker applies to a page.
//
// Every test is an exact, case-sensitive search for a substring. Called on the browser thread that
// made the request.
#pragma once

namespace obwmv {

// True when the call goes to the browser's own dialog. False only on a page of a known web mail,
// and only if the archive service can be bound now: that is also the point at which a browser
// process first loads it. `url` is the page's URL, not null.
bool UsesBrowserDialog(const wchar_t* url);

// Whether this request must not be answered with a cloud link; asked at the open-file-name
// entry point only. `url` is not null. `filter` is the request's lpstrFilter list and may be null.
bool IsLinkForbidden(const wchar_t* url, const wchar_t* filter);

} // namespace obwmv
