// The version that this module carries, for its resource: that of the whole product.
#pragma once

#define OB_SERVICE_VERSION_NUMBERS 1, 0, 0, 0
#define OB_SERVICE_VERSION_TEXT "1.0.0.0"
