// The version that the modules of the product carry. Read by the resource compiler too.
#pragma once

#define OB_VERSION_NUMBERS 1, 0, 0, 0
#define OB_VERSION_TEXT "1.0.0.0"
#define OB_PRODUCT_NAME "Ombrix Vellant"
#define OB_COMPANY_NAME "Ombrix"
