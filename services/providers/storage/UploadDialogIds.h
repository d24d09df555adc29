// Ids of the progress window of an upload.
#pragma once

#define OB_UPLOAD_DIALOG 820
#define OB_UPLOAD_BODY 821
#define OB_UPLOAD_FILE 822
#define OB_UPLOAD_BAR 823
#define OB_UPLOAD_SPEED 824
#define OB_UPLOAD_TIME_LEFT 825
