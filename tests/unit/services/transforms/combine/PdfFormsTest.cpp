// Form fields of PDFs that become one: each stays one field with its value and its widgets.
#include <set>
#include <string>
#include <vector>

#include <qpdf/QPDFAcroFormDocumentHelper.hh>

#include "services/transforms/combine/PdfForms.h"
#include "services/transforms/documents/PdfPages.h"
#include "tests/unit/services/transforms/combine/CombinedFile.h"

using namespace samples;

namespace {

using Names = std::set<std::string>;

// One text field on one page; `form` are further keys of the form, `field` of the field.
std::string TextField(const std::string& name, const std::string& value,
                      const std::string& form = "/DA (/Helv 12 Tf 0 g)",
                      const std::string& field = {}) {
    PdfBuilder pdf = OnePage("/Annots [5 0 R]", "/AcroForm <</Fields [5 0 R] " + form + ">>");
    pdf.Add("<</Type /Annot /Subtype /Widget /Rect [0 0 9 9] /P 3 0 R /FT /Tx /T (" + name +
            ") /V (" + value + ") " + field + ">>");
    return pdf.File();
}

// A radio group with a widget on each of two pages, and a text with two widgets under a parent.
std::string SpreadFields(const std::string& value) {
    PdfBuilder pdf;
    pdf.Add("<</Type /Catalog /Pages 2 0 R /AcroForm <</Fields [5 0 R 8 0 R]>>>>");
    pdf.Add("<</Type /Pages /Kids [3 0 R 4 0 R] /Count 2 /MediaBox [0 0 9 9]>>");
    pdf.Add("<</Type /Page /Parent 2 0 R /Annots [6 0 R 10 0 R]>>");
    pdf.Add("<</Type /Page /Parent 2 0 R /Annots [7 0 R 11 0 R]>>");
    pdf.Add("<</FT /Btn /Ff 49152 /T (choice) /V /" + value + " /Kids [6 0 R 7 0 R]>>");
    pdf.Add("<</Type /Annot /Subtype /Widget /Rect [0 0 9 9] /P 3 0 R /Parent 5 0 R /AS /yes>>");
    pdf.Add("<</Type /Annot /Subtype /Widget /Rect [0 0 9 9] /P 4 0 R /Parent 5 0 R /AS /Off>>");
    pdf.Add("<</T (person) /Kids [9 0 R]>>");
    pdf.Add("<</FT /Tx /T (name) /V (" + value + ") /Parent 8 0 R /Kids [10 0 R 11 0 R]>>");
    pdf.Add("<</Type /Annot /Subtype /Widget /Rect [0 0 9 9] /P 3 0 R /Parent 9 0 R>>");
    pdf.Add("<</Type /Annot /Subtype /Widget /Rect [0 0 9 9] /P 4 0 R /Parent 9 0 R>>");
    return pdf.File();
}

QPDFFormFieldObjectHelper FieldOn(CombinedFile& file, std::size_t page, int widget = 0) {
    return QPDFAcroFormDocumentHelper(file.Pdf())
        .getFieldForAnnotation(QPDFAnnotationObjectHelper(file.Annotation(page, widget)));
}

QPDFObjectHandle FormOf(CombinedFile& file) { return file.Catalog().getKey("/AcroForm"); }

TEST(PdfForms, RenameFieldsWhoseNameIsTaken) {
    CombinedFile file({{"a", TextField("name", "first")},
                       {"b", TextField("name", "second")},
                       {"c", TextField("name", "third")}});
    QPDFAcroFormDocumentHelper helper(file.Pdf());
    Names names, values;
    for (auto& field : helper.getFormFields()) {
        names.insert(field.getFullyQualifiedName());
        values.insert(field.getValueAsString());
    }
    EXPECT_EQ(names, (Names{"name", "name (2)", "name (3)"}));
    EXPECT_EQ(values, (Names{"first", "second", "third"}));
    EXPECT_EQ(FieldOn(file, 0).getValueAsString(), "first");
    EXPECT_EQ(FieldOn(file, 2).getValueAsString(), "third");
}

TEST(PdfForms, LeaveAFieldOnSeveralPagesOneField) {
    CombinedFile file({{"a", SpreadFields("yes")}, {"b", SpreadFields("no")}});
    ASSERT_EQ(FormOf(file).getKey("/Fields").getArrayNItems(), 4);
    for (const std::size_t page : {0u, 2u}) {
        for (const int widget : {0, 1}) {
            auto one = FieldOn(file, page, widget);
            auto other = FieldOn(file, page + 1, widget);
            EXPECT_EQ(one.getFullyQualifiedName(), other.getFullyQualifiedName());
            EXPECT_TRUE(file.Annotation(page, widget)
                            .getKey("/Parent")
                            .isSameObjectAs(file.Annotation(page + 1, widget).getKey("/Parent")));
            EXPECT_TRUE(file.Annotation(page, widget).getKey("/P").isSameObjectAs(file.Page(page)));
        }
    }
    EXPECT_EQ(FieldOn(file, 0).getFullyQualifiedName(), "choice");
    EXPECT_EQ(FieldOn(file, 0).getValue().getName(), "/yes");
    EXPECT_TRUE(FieldOn(file, 0).isRadioButton());
    EXPECT_EQ(FieldOn(file, 2).getFullyQualifiedName(), "choice (2)");
    EXPECT_EQ(FieldOn(file, 2).getValue().getName(), "/no");
    EXPECT_EQ(FieldOn(file, 2, 1).getFullyQualifiedName(), "person (2).name");
    EXPECT_EQ(FieldOn(file, 2, 1).getValueAsString(), "no");
}

TEST(PdfForms, KeepOneNameForFieldsThatShareItInOnePart) {
    PdfBuilder pdf = OnePage("/Annots [5 0 R 6 0 R]", "/AcroForm <</Fields [5 0 R 6 0 R]>>");
    for (int field = 0; field < 2; ++field) {
        pdf.Add("<</Type /Annot /Subtype /Widget /Rect [0 0 9 9] /FT /Tx /T (name) /V (x)>>");
    }
    CombinedFile file({{"a", TextField("name", "first")}, {"b", pdf.File()}});
    EXPECT_EQ(FieldOn(file, 1, 0).getFullyQualifiedName(), "name (2)");
    EXPECT_EQ(FieldOn(file, 1, 1).getFullyQualifiedName(), "name (2)");
}

TEST(PdfForms, TakeNoNameThatAFieldOfThePartHas) {
    PdfBuilder pdf = OnePage("/Annots [5 0 R 6 0 R]", "/AcroForm <</Fields [5 0 R 6 0 R]>>");
    pdf.Add("<</Type /Annot /Subtype /Widget /Rect [0 0 9 9] /FT /Tx /T (name)>>");
    pdf.Add("<</Type /Annot /Subtype /Widget /Rect [0 0 9 9] /FT /Tx /T (name \\(2\\))>>");
    CombinedFile file({{"a", TextField("name", "first")}, {"b", pdf.File()}});
    EXPECT_EQ(FieldOn(file, 1, 0).getFullyQualifiedName(), "name (3)");
    EXPECT_EQ(FieldOn(file, 1, 1).getFullyQualifiedName(), "name (2)");
}

// A sum that is calculated by a script, and buttons that act on it by its name and by reference.
std::string CalculatingForm() {
    PdfBuilder pdf = OnePage("/Annots [5 0 R 6 0 R 7 0 R 8 0 R 9 0 R 10 0 R] "
                             "/AA <</O <</S /JavaScript /JS (this.getField)>>>>",
                             "/AcroForm <</Fields [5 0 R 6 0 R 7 0 R 8 0 R 9 0 R] /CO [5 0 R]>>");
    const auto button = [&](const std::string& name, const std::string& action) {
        pdf.Add("<</Type /Annot /Subtype /Widget /Rect [0 0 9 9] /FT /Btn /Ff 65536 /T (" + name +
                ") /A <<" + action + ">>>>");
    };
    pdf.Add("<</Type /Annot /Subtype /Widget /Rect [0 0 9 9] /FT /Tx /T (sum) /V (7) "
            "/AA <</C <</S /JavaScript /JS (event.value)>>>>>>");
    button("reset", "/S /ResetForm /Fields [(sum)]");
    button("send", "/S /SubmitForm /F (https://example.com) /Fields [5 0 R (sum)]");
    button("hide", "/S /Hide /T (sum)");
    button("own", "/S /ResetForm /Fields [5 0 R]");
    pdf.Add("<</Type /Annot /Subtype /Link /Rect [0 0 9 9] /A <</S /JavaScript /JS (x)>>>>");
    return pdf.File();
}

TEST(PdfForms, LoseScriptsThatWouldActOnFieldsOfAnotherPart) {
    CombinedFile file({{"a", CalculatingForm()},
                       {"b", TextField("other", "x", "/CO [5 0 R]", "/AA <</C 4 0 R>>")},
                       {"c", CalculatingForm()}});
    EXPECT_EQ(FieldOn(file, 0).getValueAsString(), "7");
    EXPECT_EQ(FieldOn(file, 2).getFullyQualifiedName(), "sum (2)");
    EXPECT_EQ(FieldOn(file, 2).getValueAsString(), "7");
    EXPECT_TRUE(file.Page(0).getKey("/AA").hasKey("/O"));
    EXPECT_FALSE(file.Page(2).getKey("/AA").hasKey("/O"));
    for (const std::size_t page : {0u, 1u}) EXPECT_TRUE(file.Annotation(page).hasKey("/AA"));
    EXPECT_FALSE(file.Annotation(2).hasKey("/AA"));
    for (const int button : {1, 2, 3, 5}) {
        EXPECT_TRUE(file.Annotation(0, button).hasKey("/A")) << button;
        EXPECT_FALSE(file.Annotation(2, button).hasKey("/A")) << button;
    }
    auto own = file.Annotation(2, 4).getKey("/A").getKey("/Fields").getArrayItem(0);
    EXPECT_TRUE(own.isSameObjectAs(file.Annotation(2)));
    auto orders = FormOf(file).getKey("/CO");
    ASSERT_EQ(orders.getArrayNItems(), 2);
    EXPECT_TRUE(orders.getArrayItem(0).isSameObjectAs(file.Annotation(0)));
    EXPECT_TRUE(orders.getArrayItem(1).isSameObjectAs(file.Annotation(1)));
}

// A text field "own" and one button for each action.
std::string ButtonsOf(const std::vector<std::string>& actions) {
    std::string annotations = "5 0 R";
    for (std::size_t at = 0; at < actions.size(); ++at)
        annotations += ' ' + std::to_string(6 + at) + " 0 R";
    PdfBuilder pdf = OnePage("/Annots [" + annotations + "]", "/AcroForm <</Fields [5 0 R]>>");
    pdf.Add("<</Type /Annot /Subtype /Widget /Rect [0 0 9 9] /FT /Tx /T (own) /V (mine)>>");
    for (const std::string& action : actions)
        pdf.Add("<</Type /Annot /Subtype /Link /Rect [0 0 9 9] /A <<" + action + ">>>>");
    return pdf.File();
}

// One row: an action, and what it is in a file with another part that has fields, too, and in one
// with a part that has none.
struct ActionRow {
    std::string action;
    enum Kept { AsItWas, OnOwnFields, Not } besideFields, besidePages;
};
const std::string kSend = "/S /SubmitForm /F (https://example.com) ";
const ActionRow kActions[] = {
    {kSend, ActionRow::OnOwnFields, ActionRow::AsItWas},
    {kSend + "/Flags 4", ActionRow::OnOwnFields, ActionRow::AsItWas},
    {kSend + "/Flags 1", ActionRow::OnOwnFields,
     ActionRow::AsItWas}, // means nothing without /Fields
    {"/S /ResetForm", ActionRow::OnOwnFields, ActionRow::AsItWas},
    {"/S /ResetForm /Flags 1 /Fields [5 0 R]", ActionRow::Not, ActionRow::AsItWas},
    {kSend + "/Flags 5 /Fields [(own)]", ActionRow::Not, ActionRow::AsItWas},
    {kSend + "/Fields [5 0 R]", ActionRow::OnOwnFields, ActionRow::AsItWas},
    {kSend + "/Fields [(name)]", ActionRow::Not, ActionRow::AsItWas}, // of the other part
    {kSend + "/Fields []", ActionRow::Not, ActionRow::AsItWas},
    {kSend + "/Flags 256", ActionRow::Not, ActionRow::Not},  // the whole file
    {kSend + "/Flags 128", ActionRow::Not, ActionRow::Not},  // comments
    {kSend + "/Flags 64", ActionRow::Not, ActionRow::Not},   // all changes
    {kSend + "/Flags 8192", ActionRow::Not, ActionRow::Not}, // the file inside the values
    {"/S /ImportData /F (values.fdf)", ActionRow::Not, ActionRow::AsItWas},
    {"/S /Hide /T (name)", ActionRow::Not, ActionRow::AsItWas},
    {"/S /JavaScript /JS (this.resetForm\\(\\))", ActionRow::Not, ActionRow::AsItWas},
    {"/S /JavaScript /JS (for \\(i < this.numFields\\))", ActionRow::Not, ActionRow::AsItWas},
    {"/S /JavaScript /JS <FEFF007300750062006D006900740046006F0072006D>", ActionRow::Not,
     ActionRow::AsItWas},                                             // "submitForm"
    {"/S /JavaScript /JS 4 0 R", ActionRow::Not, ActionRow::AsItWas}, // a stream
    {"/S /JavaScript /JS (event.value = 1)", ActionRow::AsItWas, ActionRow::AsItWas},
    {"/S /URI /URI (https://example.com)", ActionRow::AsItWas, ActionRow::AsItWas},
};

std::vector<std::string> Actions() {
    std::vector<std::string> actions;
    for (const ActionRow& row : kActions) actions.push_back(row.action);
    return actions;
}

void ExpectAction(QPDFObjectHandle action, ActionRow::Kept kept, const QPDFObjectHandle& own,
                  const std::string& row) {
    ASSERT_TRUE(action.isDictionary()) << row;
    auto fields = action.getKey("/Fields");
    switch (kept) {
    case ActionRow::AsItWas: {
        const std::string kind = row.substr(3, row.find(' ', 3) - 3);
        EXPECT_EQ(action.getKey("/S").getName(), kind) << row;
        EXPECT_EQ(action.hasKey("/Fields"), row.find("/Fields") != row.npos) << row;
        break;
    }
    case ActionRow::OnOwnFields:
        ASSERT_TRUE(fields.isArray()) << row;
        ASSERT_EQ(fields.getArrayNItems(), 1) << row;
        EXPECT_TRUE(fields.getArrayItem(0).isSameObjectAs(own)) << row;
        EXPECT_TRUE(!action.hasKey("/Flags") || action.getKey("/Flags").getIntValue() % 2 == 0);
        break;
    case ActionRow::Not:
        EXPECT_EQ(action.unparseResolved(), "<< /S /Hide /T [ ] >>") << row;
    }
}

// On the page, whose field is the first comment there.
void ExpectActions(CombinedFile& file, std::size_t page, ActionRow::Kept ActionRow::*kept) {
    int comment = 0;
    for (const ActionRow& row : kActions) {
        ExpectAction(file.Annotation(page, ++comment).getKey("/A"), row.*kept,
                     file.Annotation(page), row.action);
    }
}

TEST(PdfFormActions, ReachNoFieldsOfOtherParts) {
    const std::string buttons = ButtonsOf(Actions());
    CombinedFile first({{"a", buttons}, {"b", TextField("name", "secret")}});
    ExpectActions(first, 0, &ActionRow::besideFields);
    CombinedFile second({{"a", TextField("name", "secret")}, {"b", buttons}});
    ExpectActions(second, 1, &ActionRow::besideFields);
}

TEST(PdfFormActions, StayWithoutFieldsOfOtherParts) {
    CombinedFile file({{"a", ButtonsOf(Actions())}, {"b", Pages(1, 0)}});
    ExpectActions(file, 0, &ActionRow::besidePages);
}

TEST(PdfFormActions, AllStayInAFileAlone) {
    CombinedFile file({{"a", ButtonsOf(Actions())}});
    int comment = 0;
    for (const ActionRow& row : kActions) {
        ExpectAction(file.Annotation(0, ++comment).getKey("/A"), ActionRow::AsItWas,
                     file.Annotation(0), row.action);
    }
}

// Also where the action is an object of its own, on a page, in a bookmark or after another one.
TEST(PdfFormActions, ReachNoFieldsOfOtherPartsFromElsewhere) {
    PdfBuilder pdf = OnePage("/AA <</O 5 0 R>>", "/Outlines 6 0 R");
    pdf.Add("<</S /ResetForm /Next <</S /SubmitForm /F (x)>>>>");
    pdf.Add("<</First 7 0 R /Last 7 0 R /Count 1>>");
    pdf.Add("<</Title (t) /Parent 6 0 R /A <</S /ResetForm>>>>");
    CombinedFile file({{"a", TextField("name", "secret")}, {"b", pdf.File()}});
    const auto isDisarmed = [](QPDFObjectHandle action) {
        return action.unparseResolved() == "<< /S /Hide /T [ ] >>";
    };
    EXPECT_TRUE(isDisarmed(file.Page(1).getKey("/AA").getKey("/O")));
    auto mark = file.Catalog().getKey("/Outlines").getKey("/Last").getKey("/First");
    EXPECT_TRUE(isDisarmed(mark.getKey("/A")));
}

TEST(PdfForms, ListAFieldThatItsPartDidNotList) {
    PdfBuilder pdf = OnePage("/Annots [5 0 R]", "/AcroForm <</Fields []>>");
    pdf.Add("<</Type /Annot /Subtype /Widget /Rect [0 0 9 9] /FT /Tx /T (name) /V (x)>>");
    CombinedFile file({{"a", TextField("name", "first")}, {"b", pdf.File()}});
    EXPECT_EQ(FormOf(file).getKey("/Fields").getArrayNItems(), 2);
    EXPECT_EQ(FieldOn(file, 1).getFullyQualifiedName(), "name (2)");
}

TEST(PdfForms, GiveAFontAnotherNameWhenItsNameIsTaken) {
    const auto form = [](const std::string& font) {
        return "/DA (/F 12 Tf 0 g) /DR <</Font <</F <</Type /Font /BaseFont /" + font + ">>>>>>";
    };
    CombinedFile file({{"a", TextField("a", "", form("Helvetica"))},
                       {"b", TextField("b", "", form("Courier"))},
                       {"c", TextField("c", "", form("Courier"), "/DA (0 g /F 9 Tf)")},
                       {"d", TextField("d", "", form("Helvetica"))}});
    auto fonts = FormOf(file).getKey("/DR").getKey("/Font");
    EXPECT_EQ(fonts.getKeys(), (Names{"/F", "/F_2"}));
    EXPECT_EQ(fonts.getKey("/F_2").getKey("/BaseFont").getName(), "/Courier");
    EXPECT_EQ(FieldOn(file, 0).getDefaultAppearance(), "/F 12 Tf 0 g");
    EXPECT_EQ(FieldOn(file, 1).getDefaultAppearance(), "/F_2 12 Tf 0 g");
    EXPECT_EQ(FieldOn(file, 2).getDefaultAppearance(), "0 g /F_2 9 Tf");
    EXPECT_EQ(FieldOn(file, 3).getDefaultAppearance(), "/F 12 Tf 0 g");
}

// A font whose arrays name each other: a thousand items of a thousand items and so on.
std::string FontWithoutEnd() {
    PdfBuilder pdf = OnePage("/Annots [5 0 R]", "/AcroForm <</Fields [5 0 R] /DA (/F 12 Tf) /DR "
                                                "<</Font <</F <</Widths 6 0 R>>>>>>>>");
    pdf.Add("<</Type /Annot /Subtype /Widget /Rect [0 0 9 9] /P 3 0 R /FT /Tx /T (name)>>");
    for (int array = 7; array < 11; ++array) {
        std::string items;
        for (int item = 0; item < 1000; ++item) items += std::to_string(array) + " 0 R ";
        pdf.Add("[" + items + "]");
    }
    pdf.Add("(end)");
    return pdf.File();
}

TEST(PdfForms, TakeFontsThatAreTooLargeToCompareForDifferent) {
    CombinedFile file({{"a", FontWithoutEnd()}, {"b", FontWithoutEnd()}});
    EXPECT_EQ(FormOf(file).getKey("/DR").getKey("/Font").getKeys(), (Names{"/F", "/F_2"}));
    EXPECT_EQ(FieldOn(file, 1).getDefaultAppearance(), "/F_2 12 Tf");
}

// Each occurrence of the page would go through all of its comments.
TEST(PdfForms, LookOnceAtAPageThatIsManyTimesInItsFile) {
    std::string kids, comments;
    for (int kid = 0; kid < 3000; ++kid) kids += "3 0 R ";
    for (int comment = 0; comment < 30'000; ++comment) comments += "5 0 R ";
    PdfBuilder pdf;
    pdf.Add("<</Type /Catalog /Pages 2 0 R /AcroForm <</Fields []>>>>");
    pdf.Add("<</Type /Pages /Kids [" + kids + "] /Count 3000 /MediaBox [0 0 9 9]>>");
    pdf.Add("<</Type /Page /Parent 2 0 R /Annots 4 0 R>>");
    pdf.Add("[" + comments + "]");
    pdf.Add("<</Type /Annot /Subtype /Widget /Rect [0 0 9 9] /FT /Tx /T (name)>>");
    CombinedFile file({{"a", pdf.File()}});
    EXPECT_EQ(FormOf(file).getKey("/Fields").getArrayNItems(), 1);
}

TEST(PdfForms, KeepTheFormsDefaultsForAllOfItsFields) {
    CombinedFile file({{"a", TextField("a", "", "/DA (/Helv 8 Tf) /CO [5 0 R]")},
                       {"b", TextField("b", "", "/DA (/Helv 9 Tf) /Q 2 /NeedAppearances true")},
                       {"c", TextField("c", "", "/CO [5 0 R] /XFA (<form/>) /SigFlags 1")}});
    EXPECT_EQ(FieldOn(file, 0).getDefaultAppearance(), "/Helv 8 Tf");
    EXPECT_EQ(FieldOn(file, 0).getQuadding(), 0);
    EXPECT_EQ(FieldOn(file, 1).getDefaultAppearance(), "/Helv 9 Tf");
    EXPECT_EQ(FieldOn(file, 1).getQuadding(), 2);
    auto orders = FormOf(file).getKey("/CO");
    ASSERT_EQ(orders.getArrayNItems(), 2);
    EXPECT_TRUE(orders.getArrayItem(1).isSameObjectAs(file.Annotation(2)));
    EXPECT_TRUE(FormOf(file).getKey("/NeedAppearances").getBoolValue());
    EXPECT_FALSE(FormOf(file).hasKey("/XFA"));
    EXPECT_FALSE(FormOf(file).hasKey("/SigFlags"));
}

TEST(PdfForms, AreNoneWithoutFields) {
    CombinedFile file({{"a", Pages(1, 0, "", "/AcroForm <</Fields []>>")}, {"b", Pages(1, 0)}});
    EXPECT_FALSE(file.Catalog().hasKey("/AcroForm"));
}

class CountedSteps final : public transforms::PictureSteps {
public:
    void Step() noexcept override { ++count; }
    int count = 0;
};

// As many steps as there are fields and kids, not as many as pairs of them.
TEST(PdfForms, LookOnceAtKidsThatManyFieldsShare) {
    constexpr int kFields = 500, kKids = 700, kFirstField = 6;
    PdfBuilder pdf;
    std::string fields, kids;
    for (int field = 0; field < kFields; ++field)
        fields += std::to_string(kFirstField + field) + " 0 R ";
    for (int kid = 0; kid < kKids; ++kid)
        kids += std::to_string(kFirstField + kFields + kid) + " 0 R ";
    pdf.Add("<</Type /Catalog /Pages 2 0 R /AcroForm <</Fields 4 0 R>>>>");
    pdf.Add("<</Type /Pages /Kids [3 0 R] /Count 1 /MediaBox [0 0 9 9]>>");
    pdf.Add("<</Type /Page /Parent 2 0 R>>");
    pdf.Add("[" + fields + "]");
    pdf.Add("[" + kids + "]");
    for (int field = 0; field < kFields; ++field) pdf.Add("<</FT /Tx /T (a) /Kids 5 0 R>>");
    for (int kid = 0; kid < kKids; ++kid)
        pdf.Add("<</T (b" + std::to_string(kid) + ") /Parent 6 0 R>>");
    const std::string file = pdf.File();
    QPDF source;
    source.processMemoryFile("form", file.data(), file.size());
    CountedSteps steps;
    const transforms::combine::PdfForms forms(&steps);
    EXPECT_FALSE(forms.WillRename(source, transforms::documents::PagesOf(source)));
    EXPECT_EQ(steps.count, kFields + kKids);
}

} // namespace
