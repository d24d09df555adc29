// The command line of the mail page.
//
//   mailpage.exe [--url URL] [--entry open|dialog] [--single] [--filter TEXT]
//                [--no-fallback-dialog] [--auto [--keep-open]] [--result FILE] [--picture FILE]
//                [--outbox FOLDER]
//
//   --url URL             the page's address; a mail page when it isn't given
//   --entry open|dialog    whether the page asks by GetOpenFileNameW or by IFileDialog
//   --single              the page takes one file
//   --filter TEXT         file types, "Name|patterns|Name|patterns"
//   --no-fallback-dialog  the browser's own dialog answers a cancel at once and shows nothing
//   --auto                presses Attach at once and ends after the answer
//   --keep-open           stays open all the same
//   --result FILE         after each answer: what the page was given, UTF-8, one thing a line
//   --picture FILE        after each answer: the window as a PNG file
//   --outbox FOLDER       sending copies the attachments there, as a mail service would take them
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace mailpage {

enum class Entry { OpenFileName, Dialog };

struct Options {
    std::wstring url = L"https://mail.google.com/mail/u/0/#inbox?compose=new";
    Entry entry = Entry::OpenFileName;
    bool single = false;
    bool fallbackDialog = true;
    bool automatic = false;
    bool keepOpen = false;
    std::wstring filter;
    std::wstring resultFile;
    std::wstring pictureFile;
    std::wstring outbox;
};

// Reads the arguments after the program's name. Nothing when one isn't known or lacks its value;
// `problem` then names it.
std::optional<Options> ParseOptions(const std::vector<std::wstring>& arguments,
                                    std::wstring& problem);

} // namespace mailpage
