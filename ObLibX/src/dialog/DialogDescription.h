// What the description of the dialogs states: fonts for all of them, and for each control of a
// dialog how it is dressed.
//
//   <root>
//     <defaults><fonts>
//       <default name="" size="9"/>
//       <font><orig name="" size="-1"/><subst name="" size="-1"/></font> ...
//     </fonts></defaults>
//     <dialog id="" autogen="yes"> ...
//       <control id=""> ...
//         <subclass/> <cue/> <tooltip/> <itemdata/> <color/>
//         <font name="" size="" weight="400" italic="true" underline="true" strikeout="true"/>
//         <columns><column title="" width="" align="right|center"/> ...</columns>
//
// The names of the root, and whatever isn't named here, don't count, nor does `autogen`. A size
// that no font has, a colour above 0xFFFFFF and a title that is no id of a string table count as
// missing.
#pragma once

#include <cstdint>
#include <vector>

#include "ObLib/Src/ObString.h"
#include "ObLibX/src/dialog/FontSubstitution.h"
#include "ObLibX/src/dialog/ObXML.h"

namespace ObLibX {

enum class ColumnAlignment : std::int32_t { Left = 0, Right = 1, Centre = 2 };

struct ColumnDescription {
    std::int32_t titleId = 0; // of the string table; 0: none
    std::int32_t widthPercent = 0;
    ColumnAlignment alignment = ColumnAlignment::Left;
};

// How one control is dressed.
struct ControlDescription {
    std::int32_t id = 0;
    ObLib::ObString subclass;
    ObLib::ObString fontName = L"Segoe UI";
    std::int32_t fontSize = 9; // points
    std::int32_t fontWeight = kNormalFontWeight;
    std::int32_t fontStyle = 0; // kFontItalic, kFontUnderline, kFontStrikeout
    std::uint32_t color = 0;    // 0x00BBGGRR
    ObLib::ObString cue;
    ObLib::ObString tooltip;
    ObLib::ObString itemData;
    std::vector<ColumnDescription> columns;
};

// The font of all dialogs.
struct BaseFont {
    ObLib::ObString name;  // empty: not set
    std::int32_t size = 9; // points
};

// Reads what the description states for all dialogs; without it `font` and `substitution` stay as
// they are. A description that contradicts itself ends the process.
void ReadDialogDefaults(const ObXML& description, BaseFont& font, FontSubstitution& substitution);

// What a dialog's controls are described with besides the description.
struct DescriptionContext {
    BaseFont font;
    std::uint32_t accentColor = 0; // for "HOTLIGHT"; 0x00BBGGRR
};

// The controls of the first dialog with this id, in order, in place of what `controls` had. False
// when there is no such dialog. A tooltip that is a number is the text of the string table.
bool ReadDialogControls(const ObXML& description, std::int32_t dialogId,
                        const DescriptionContext& context,
                        std::vector<ControlDescription>& controls);

} // namespace ObLibX
