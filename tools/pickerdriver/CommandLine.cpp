#include "tools/pickerdriver/CommandLine.h"

#include <algorithm>
#include <cwchar>

#include "services/providers/ui/PdfDialogIds.h"
#include "services/providers/ui/PersonalDataDialogIds.h"
#include "services/providers/ui/PhotoDialogIds.h"
#include "services/providers/ui/ResizeDialogIds.h"
#include "services/providers/ui/WatermarkDialogIds.h"
#include "tools/pickerdriver/Output.h"

namespace pickerdriver {
namespace {

Choice ParseChoice(const std::wstring& name) {
    if (name == L"zip") return Choice::Zip;
    if (name == L"encrypt") return Choice::Encrypt;
    if (name == L"none") return Choice::None;
    throw Failure{L"--choice is zip, encrypt or none, not \"" + name + L"\""};
}

constexpr Transform kTransforms[] = {
    {L"clean", 185, OB_PERSONAL_DATA_RECEIPT, 0, 0, true},
    {L"pdf", 180, OB_PDF_PICTURES, 0, 0, false, true},
    {L"photos", 184, OB_PHOTO_WEBP, 0, 0, false},
    {L"resize", 182, OB_RESIZE_EDGE, OB_RESIZE_EDGE, OB_RESIZE_EDGE_NUMBER, false},
    {L"fit", 182, OB_RESIZE_EDGE, OB_RESIZE_FIT, OB_RESIZE_FIT_NUMBER, false},
    {L"combine", 186, 0, 0, 0, false},
    {L"watermark", 181, OB_WATERMARK_TEXT, 0, OB_WATERMARK_TEXT, false},
    {L"watermark-picture", 181, OB_WATERMARK_TEXT, OB_WATERMARK_USE_PICTURE, OB_WATERMARK_PICTURE,
     false},
};

const Transform* ParseTransform(const std::wstring& name) {
    for (const Transform& transform : kTransforms) {
        if (name == transform.name) return &transform;
    }
    throw Failure{L"--tick is clean, pdf, photos, resize, fit, combine, watermark or "
                  L"watermark-picture, not \"" +
                  name + L"\""};
}

void SplitFiles(const std::wstring& list, std::vector<std::wstring>& files) {
    for (std::size_t begin = 0; begin <= list.size();) {
        const std::size_t end = std::min(list.find(L';', begin), list.size());
        if (end > begin) files.push_back(list.substr(begin, end - begin));
        begin = end + 1;
    }
}

DWORD ParseSeconds(const std::wstring& text) {
    const unsigned long seconds = wcstoul(text.c_str(), nullptr, 10);
    if (seconds == 0 || seconds > 3600) throw Failure{L"--timeout is 1 to 3600 seconds"};
    return seconds * 1000;
}

void Apply(Task& task, const std::wstring& option, const std::wstring& value) {
    if (option == L"--choice") {
        task.choice = ParseChoice(value);
        task.hasChoice = true;
    } else if (option == L"--tick") {
        task.tick = ParseTransform(value);
    } else if (option == L"--value") {
        task.value = value;
    } else if (option == L"--files") {
        SplitFiles(value, task.files);
    } else if (option == L"--file") {
        task.files.push_back(value);
    } else if (option == L"--password") {
        task.password = value;
    } else if (option == L"--pdf-password") {
        task.pdfPassword = value;
    } else if (option == L"--server") {
        task.server = value;
    } else if (option == L"--user") {
        task.user = value;
    } else if (option == L"--server-password") {
        task.serverPassword = value;
    } else if (option == L"--picture") {
        task.picture = value;
    } else if (option == L"--timeout") {
        task.limit = ParseSeconds(value);
    } else if (option == L"--page-result") {
        task.pageResult = value;
    } else if (option == L"--keep") {
        task.keepFolder = value;
    } else {
        throw Failure{L"unknown option " + option};
    }
}

// As the runtime's start-up code reads it back: backslashes count only before a quotation mark.
std::wstring Quoted(const std::wstring& argument) {
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t character : argument) {
        if (character == L'"') quoted.append(backslashes + 1, L'\\');
        backslashes = character == L'\\' ? backslashes + 1 : 0;
        quoted += character;
    }
    return quoted.append(backslashes, L'\\') + L"\"";
}

void Check(const Task& task) {
    if (task.files.empty() && !task.cancel) throw Failure{L"no file to pick: give --files"};
    if (task.choice == Choice::Encrypt && task.password.empty() && !task.cancel) {
        throw Failure{L"--choice encrypt needs --password"};
    }
    if (!task.keepFolder.empty() && task.pageResult.empty()) {
        throw Failure{L"--keep needs --page-result"};
    }
    if ((task.pickFromCloud || !task.server.empty()) && task.pageResult.empty()) {
        throw Failure{L"--server and --pick-from-cloud need --page-result"};
    }
    if (!task.pageResult.empty() && task.program.empty()) {
        throw Failure{L"--page-result needs a program"};
    }
}

} // namespace

const wchar_t kUsage[] =
    L"usage: pickerdriver [OPTION]... [-- PROGRAM [ARGUMENT]...]\n"
    L"  --choice zip|encrypt|none  clicked in the picker; without it the picker's own is kept\n"
    L"  --tick NAME                ticks the box of this transform and answers its dialogs: "
    L"clean,\n"
    L"                             pdf, photos, resize, fit, combine, watermark or\n"
    L"                             watermark-picture\n"
    L"  --value TEXT               typed in its settings: a number, the text of a watermark or\n"
    L"                             the path of its picture\n"
    L"  --files A;B;C, --file A    full paths, typed as names\n"
    L"  --password TEXT            for --choice encrypt\n"
    L"  --pdf-password TEXT        for encrypted PDFs; without it they are left as they are\n"
    L"  --server ADDRESS           of WebDAV, logged in to in the chooser of a cloud account, "
    L"with\n"
    L"  --user, --server-password  these\n"
    L"  --pick-from-cloud          asks once more, for the last file that the cloud button shows\n"
    L"  --cancel                   presses Cancel instead of Open\n"
    L"  --picture FILE.png         of the open picker; -chosen, -settings, -password,\n"
    L"                             -pdf-password, -message, -receipt, -chooser, -login, -upload,\n"
    L"                             -cloud and -cloud-list are put before .png for the pictures\n"
    L"                             that follow\n"
    L"  --page-result FILE         where PROGRAM, a mail page, lists what it got\n"
    L"  --keep FOLDER              where to copy the files that the page got\n"
    L"  --timeout SECONDS          for each wait (60)\n"
    L"PROGRAM is started first; its exit code is this program's. 2: a step couldn't be done.";

Task ParseCommandLine(int argc, wchar_t** argv) {
    Task task;
    int index = 1;
    for (; index < argc && std::wstring(argv[index]) != L"--"; ++index) {
        const std::wstring option = argv[index];
        if (option == L"--cancel") {
            task.cancel = true;
            continue;
        }
        if (option == L"--pick-from-cloud") {
            task.pickFromCloud = true;
            continue;
        }
        if (++index == argc) throw Failure{option + L" needs a value"};
        Apply(task, option, argv[index]);
    }
    for (++index; index < argc; ++index) {
        task.program += (task.program.empty() ? L"" : L" ") + Quoted(argv[index]);
    }
    Check(task);
    return task;
}

} // namespace pickerdriver
