// Ids of the settings dialog of photos that are converted.
#pragma once

#define OB_PHOTO_DIALOG 720
#define OB_PHOTO_INTRO 721
#define OB_PHOTO_KINDS 722
#define OB_PHOTO_WEBP 723
#define OB_PHOTO_TIFF 724
#define OB_PHOTO_BMP 725
#define OB_PHOTO_QUALITIES 726
#define OB_PHOTO_NOTE 727
// In the order of the qualities.
#define OB_PHOTO_HIGH 730
#define OB_PHOTO_MEDIUM 731
#define OB_PHOTO_LOW 732
