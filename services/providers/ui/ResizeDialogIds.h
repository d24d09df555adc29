// Ids of the settings dialog of pictures that are made smaller.
#pragma once

#define OB_RESIZE_DIALOG 640
#define OB_RESIZE_INTRO 641
#define OB_RESIZE_AIMS 642
#define OB_RESIZE_NOTE 643
// Four each, in the order of the aims.
#define OB_RESIZE_EDGE 650
#define OB_RESIZE_PERCENT 651
#define OB_RESIZE_BYTES 652
#define OB_RESIZE_FIT 653
#define OB_RESIZE_EDGE_NUMBER 660
#define OB_RESIZE_PERCENT_NUMBER 661
#define OB_RESIZE_BYTES_NUMBER 662
#define OB_RESIZE_FIT_NUMBER 663
#define OB_RESIZE_EDGE_UNIT 670
#define OB_RESIZE_PERCENT_UNIT 671
#define OB_RESIZE_BYTES_UNIT 672
#define OB_RESIZE_FIT_UNIT 673
