// The scanner's rules: reads one node of a text, character by character. For TagScanner only;
// QuickScan.h reads most nodes faster, with the same result.
#pragma once

#include "ObLibX/src/xml/scan/ScannerState.h"

namespace ObLibX {

// What ends a node.
enum class Terminator { None, Less, Greater, Instruction, Comment, Cdata };

// Reads from the scanner's cursor to the end of a node. An object is for one node.
class NodeRules {
public:
    NodeRules(ScannerState& scanner, NodeScan& scan) : scanner_(scanner), scan_(scan) {}

    // Fills the node and leaves the scanner's cursor after it. Throws std::bad_alloc.
    void Run();

private:
    // What a character does to the node.
    enum class Verdict { GoOn, EndBefore, EndAfter };

    Verdict Apply(wchar_t unit);
    void AtStart(wchar_t unit);
    void AfterLess(wchar_t unit);
    void AfterExclamation(wchar_t unit);
    void AfterExclamationInDocType(wchar_t unit);
    void AfterDash(wchar_t unit);
    void AfterBracket(wchar_t unit);
    bool NameGoesOn(wchar_t unit);
    Verdict WithoutTerminator(wchar_t unit);
    Verdict AtGreater();
    bool PrecededByTerminator() const;
    bool SlashEndsTag() const;
    void Quotes(wchar_t unit);
    void QuotesInStartTag(wchar_t unit);
    void QuotesInDocType(wchar_t unit);

    void Decide(std::int32_t type, Terminator terminator);
    void BeginName(std::int32_t offset);
    void SyntaxError(const wchar_t* name);
    bool MoreText();
    void AtEndOfText();
    void Finish();

    bool Has(std::uint32_t state) const { return (states_ & state) != 0; }
    bool InQuotes() const;

    ScannerState& scanner_;
    NodeScan& scan_;
    std::int32_t type_;
    Terminator terminator_ = Terminator::None;
    std::uint32_t states_ = 0;
    bool malformed_ = false;
    wchar_t last_ = 0; // the two units before the current one
    wchar_t lastButOne_ = 0;
};

} // namespace ObLibX
