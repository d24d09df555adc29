// The attachment settings on a recording archive service.
#pragma once

#include "OBCore/settings/AttachmentDialog.h"
#include "OBCore/settings/AttachmentDialogIds.h"
#include "tests/unit/WebVellant/OBCore/settings/SettingsFixture.h"

namespace obtest {

class AttachmentFixture : public SettingsFixture {
protected:
    INT_PTR Show(const std::function<void(const OpenDialog&)>& use) {
        return Operate(
            OB_ATTACHMENT_PREVIEW,
            [this]() -> INT_PTR {
                obcore::OBAttachmentDialogImp dialog(nullptr, options_);
                return dialog.DoModal();
            },
            use);
    }
    static std::wstring Preview(const OpenDialog& dialog) {
        return dialog.Text(OB_ATTACHMENT_PREVIEW);
    }

    obcore::OBOptions options_ = PlainOptions();
};

} // namespace obtest
