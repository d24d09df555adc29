// Ids of the choice of the encryption method and its controls; the resource scripts include this
// file, so it has nothing but definitions of the preprocessor.
#pragma once

#define OB_ENCRYPTION 105

#define OB_ENCRYPTION_METHOD_4 1002
#define OB_ENCRYPTION_HEADLINE 1003
#define OB_ENCRYPTION_METHOD_8 1005

// A label that the dialog's code doesn't use.
#define OB_ENCRYPTION_HINT 2001
