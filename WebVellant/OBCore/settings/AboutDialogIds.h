// Ids of the about box and its controls; the resource scripts include this file, so it has nothing
// but definitions of the preprocessor.
#pragma once

#define OB_ABOUT 107

#define OB_ABOUT_HELP 1000
#define OB_ABOUT_VERSION 1001

// The icon of a product whose encryption an administrator's public key can recover.
#define OB_RECOVERY_ICON 112
