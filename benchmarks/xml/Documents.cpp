#include "benchmarks/xml/Documents.h"

#include <cstdint>

namespace bench {
namespace {

std::wstring Number(std::uint32_t number) {
    std::wstring digits;
    do {
        digits.insert(digits.begin(), static_cast<wchar_t>(L'0' + number % 10));
        number /= 10;
    } while (number != 0);
    return digits;
}

// Words of two to eleven letters.
class Words {
public:
    std::wstring Take(std::size_t units) {
        std::wstring text;
        while (text.size() < units) {
            const std::uint32_t length = 2 + Next() % 10;
            for (std::uint32_t i = 0; i < length; ++i) {
                text += static_cast<wchar_t>(L'a' + Next() % 26);
            }
            text += Next() % 12 == 0 ? L",\r\n" : L" ";
        }
        return text;
    }
    std::uint32_t Next() {
        state_ = state_ * 1664525 + 1013904223;
        return state_ >> 16;
    }

private:
    std::uint32_t state_ = 1;
};

} // namespace

std::wstring MarkupHeavyDocument() {
    constexpr std::uint32_t kEntries = 99999;
    std::wstring text =
        L"<?xml version=\"1.0\"?>\r\n<list a=\"1\" b=\"2\" c=\"3\" d=\"4\" e=\"5\">";
    text += L"<head/><head/><head/><head/>head";
    for (std::uint32_t i = 0; i < kEntries; ++i) {
        text += L"\r\n  <entry id=\"" + Number(i) + L"\" kind=\"file\" state=\"on\">\r\n    ";
        text += L"<title lang=\"en\">Entry " + Number(i * 7) + L"</title>\r\n    ";
        text += L"<size unit=\"kb\"/>\r\n    <flag/><mark></mark>\r\n  </entry>";
    }
    return text + L"\r\n</list>\r\n";
}

std::wstring TextHeavyDocument() {
    Words words;
    std::wstring text = L"<book>\r\n";
    for (int chapter = 0; chapter < 800; ++chapter) {
        text += L"<chapter number=\"" + Number(chapter) + L"\">\r\n";
        for (int paragraph = 0; paragraph < 6; ++paragraph) {
            text += L"<p>" + words.Take(400 + words.Next() % 1600) + L"</p>\r\n";
        }
        text += L"<!-- " + words.Take(300) + L"-->\r\n";
        text += L"<code><![CDATA[" + words.Take(700) + L"]]></code>\r\n</chapter>\r\n";
    }
    return text + L"</book>\r\n";
}

std::wstring DialogDocument() {
    std::wstring text = L"<?xml version=\"1.0\" encoding=\"UTF-16\"?>\r\n"
                        L"<dialog id=\"1000\" caption=\"Options\" width=\"320\" height=\"240\" "
                        L"font=\"MS Shell Dlg\" size=\"8\">\r\n";
    for (std::uint32_t i = 0; text.size() < 10000; ++i) {
        text += L"  <!-- row " + Number(i) + L" -->\r\n  <group>\r\n    <static x=\"7\" y=\"" +
                Number(i * 14) + L"\" cx=\"80\" cy=\"8\">Setting &amp;number " + Number(i) +
                L"</static>\r\n    <edit id=\"" + Number(2000 + i) + L"\" x=\"90\" y=\"" +
                Number(i * 14) + L"\" cx=\"120\" cy=\"12\" style=\"tab border autohscroll\"/>\r\n" +
                L"    <button id=\"" + Number(3000 + i) +
                L"\" text=\"&amp;Browse...\" default=\"no\"/>\r\n  </group>\r\n";
    }
    return text + L"</dialog>\r\n";
}

} // namespace bench
