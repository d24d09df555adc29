// Ids of the gallery's pages and of what is on them.
#pragma once

#define OB_GALLERY_STOCK 2101

#define OB_GALLERY_NAME 1001
#define OB_GALLERY_NOTES 1002
#define OB_GALLERY_PASSWORD 1003
#define OB_GALLERY_KIND 1004
#define OB_GALLERY_FILES 1005
#define OB_GALLERY_PROGRESS 1006
#define OB_GALLERY_DEFAULTS 1007
