// Certificates made for these tests; their private keys were deleted. All but two are valid
// for a hundred years from 2026.
#pragma once

namespace obtest {

// RSA of 2048 bits.
inline constexpr wchar_t kRecoveryCertificate[] =
    L"-----BEGIN CERTIFICATE-----\n"
    L"MIIDHTCCAgWgAwIBAgIUYdQnBubkFwhvhOj2dpWN1mhCzF0wDQYJKoZIhvcNAQEL\n"
    L"BQAwHTEbMBkGA1UEAwwSUmVjb3Zlcnkgb2YgYSB0ZXN0MCAXDTI2MTEyMDIwMzE0\n"
    L"NFoYDzIxMjYxMDI3MjAzMTQ0WjAdMRswGQYDVQQDDBJSZWNvdmVyeSBvZiBhIHRl\n"
    L"c3QwggEiMA0GCSqGSIb3DQEBAQUAA4IBDwAwggEKAoIBAQC7nrXLrTRR7CCtYlWI\n"
    L"GEJrEcPw05CDWEGcToebq10sNnoeNSax0nuy5dUUkgqxu3OK4oIBwgCDRMEM8tz/\n"
    L"kkKUDF1mCwNB+wABTwrp6wryK4Q2SurU0GSFrVKPAYMrPlTEOzKqq9bekP691kwV\n"
    L"L2IFXFc7o880iNF/xWfSEGQ4jOMmI1rD1ckIxyNYtXOCH9vy0z1eYtPMBLv8+84I\n"
    L"FER5P/v1CnmCwwNqrPETQEWSM6m/PjwyWZyKq7QAVcREXwuHmTL/uQeKYvvE7On6\n"
    L"l3qMsaOpwlB3CIZ5i0CuLwR0ZGmuZeeYk5qfG3MsyoRuVMeruyoptROIFDEer9wY\n"
    L"WK/jAgMBAAGjUzBRMB0GA1UdDgQWBBSQ/I+tR6r2+u95Rv7lXndUiJ8M/TAfBgNV\n"
    L"HSMEGDAWgBSQ/I+tR6r2+u95Rv7lXndUiJ8M/TAPBgNVHRMBAf8EBTADAQH/MA0G\n"
    L"CSqGSIb3DQEBCwUAA4IBAQBRKveJtw6VeeYCwURIQzlXF4dQXIb/Lcq4gXC4CECj\n"
    L"zLKwKxmX8QTfTLFsuJ0CzEDz8+mgtl0iozDDFMoXK71MKi2GHa6c/txxrVTaVWAB\n"
    L"CfAZ6UwcsXYOmh8MU+m5PVnuNzIGxmMVX6oilmC0jD1hZVqLgQAEImF3UmUykTUh\n"
    L"jX1qGpEYMcekHd/z+ctm9cpYR+fwRilBjONzljKzUQte64ymv63HyvUTgIHeG17O\n"
    L"6M6EP+YNKEg3QHF8aEKnWRpfgNlvftJ8AKGczjVYRxenEVtZRGWnhjPegDDnto0d\n"
    L"yMEtxpEslSuIkiCjhw9k6V2Y1URRgtAIPWiB7L3y1LFT\n"
    L"-----END CERTIFICATE-----\n";

// RSA of 2048 bits. The serial number has the top bit of its first byte set; the key usage is key
// encipherment.
inline constexpr wchar_t kTopBitCertificate[] =
    L"-----BEGIN CERTIFICATE-----\n"
    L"MIIDDDCCAfSgAwIBAgIJAJqxwtPk9QYXMA0GCSqGSIb3DQEBCwUAMBIxEDAOBgNV\n"
    L"BAMMB1RvcCBiaXQwIBcNMjYxMTIyMDQxODEwWhgPMjEyNjEwMjkwNDE4MTBaMBIx\n"
    L"EDAOBgNVBAMMB1RvcCBiaXQwggEiMA0GCSqGSIb3DQEBAQUAA4IBDwAwggEKAoIB\n"
    L"AQDPAtSoenmCJdrUEB6KT4gNVT2Sy9AEaNzRWAjb9mPeU2jHlx0FVfrGkU9dEgGs\n"
    L"FTLV+bU6u4V8793jee+XQPRueoztzrHzD7+De4EoxcZzhhZ2ATUibl1P+L2uxKyt\n"
    L"u/qbfVu0AbC1G8e4jGtvDqnPJ3Pjgv5HnuPtG5TxKLyEpgvlWOWFT/OhvRBWgXMA\n"
    L"dC9KLbv/UloJk2GHz0Dy/C/b+NDgkgm5p2XYdwndET8Nh5hp5iUnl2JE4+qlzncG\n"
    L"HrzwGkygkGx/I/foCEVORB4OyFExQu8t9yijCAbgXg3nbFUsqbOisNFL7+WCC8Fr\n"
    L"3vEiLFbxb4a4TYn22EYXJP4/AgMBAAGjYzBhMB0GA1UdDgQWBBSJAHFYFbQ36AXo\n"
    L"i64kr57gVnfr6TAfBgNVHSMEGDAWgBSJAHFYFbQ36AXoi64kr57gVnfr6TAPBgNV\n"
    L"HRMBAf8EBTADAQH/MA4GA1UdDwEB/wQEAwIFIDANBgkqhkiG9w0BAQsFAAOCAQEA\n"
    L"vfOyavh1GTinO2Im/gMNePdPPtJzDw3LnOhIlB9tUVeRPFqqYsxclfU7y5ps8fYs\n"
    L"IN0cBKnOy+LUu2TBtHMH2DQhe4s7ouXa33QwCkPln20+WRnBrtkd9+lMTKBsywdM\n"
    L"fcF07g/k4OrsCG3ve3X0P7HUMX1ab+Ci3d2sUUG3y4esRSUq/91/XY+RaSGg4s9a\n"
    L"OpbgyGzxIz2j+KDLfSItnQ1Nyt+uPDXjtZfvU5WxPt5FPA9cRgoZllCar8w5/Ofr\n"
    L"ZZNkqQtJrMSFoUBPGYdDXoDpZsnOilIumRsFy0mzike5JVLdMzIvFpICh5VAPuO1\n"
    L"djTDZDWCqCLNzc+kfKA16A==\n"
    L"-----END CERTIFICATE-----\n";

// RSA of 2048 bits. The key usage is digital signatures only.
inline constexpr wchar_t kSigningCertificate[] =
    L"-----BEGIN CERTIFICATE-----\n"
    L"MIIDHTCCAgWgAwIBAgIUEYGnuFxFATcXoORE7uTVnzBazkcwDQYJKoZIhvcNAQEL\n"
    L"BQAwFTETMBEGA1UEAwwKU2lnbnMgb25seTAgFw0yNjExMjIwNDE4MTRaGA8yMTI2\n"
    L"MTAyOTA0MTgxNFowFTETMBEGA1UEAwwKU2lnbnMgb25seTCCASIwDQYJKoZIhvcN\n"
    L"AQEBBQADggEPADCCAQoCggEBANKHfPk1P3+wNgrYvu80GFCAenMkRQtElXjaOSQw\n"
    L"ALV/CVL/vlANQLLj1ps4SiGD1MGY0MJkkwO2MvyxaTi5p9QKsbvsPgqZJcdLy2Pd\n"
    L"AXHBYoCjmsxBem/ZCTFRQtbuGYTVGHZPCaQUv4Y/jRCcq++e+hI+FAeW/vbqt844\n"
    L"550Gj97HiuXXBtPxL7H86wg8VukmWpMLJheshX2eTE1AO77LqZ5QuSXK5EbLemBc\n"
    L"Y+3CyIt8ZVbZugafPvnJZM/cneQEnDwtxR6BVBjXB8thIyh02K4ICrW76p64taQF\n"
    L"lMVw89fQYXISVdv8iULtkFGBSEJXwWk1zz5yv5/hOroou50CAwEAAaNjMGEwHQYD\n"
    L"VR0OBBYEFCwrxQiapj9Hc8m0kfD7r2vhOnuxMB8GA1UdIwQYMBaAFCwrxQiapj9H\n"
    L"c8m0kfD7r2vhOnuxMA8GA1UdEwEB/wQFMAMBAf8wDgYDVR0PAQH/BAQDAgeAMA0G\n"
    L"CSqGSIb3DQEBCwUAA4IBAQBNQJe4juWSFrzhIJm6XacGVGY3V6In0UROxHT5Dnar\n"
    L"ZfsgAzdATyptsqjl3vQescGx1HLMkjhSh84nt+F+ZPHDlnpIbA1QikB6tfEsdKss\n"
    L"0D7PuPnrm4kXCE4TIDTsddrgpZqNgIZXEMYxxnUBEPIV9WP7OTAI/p36QvFNgNIs\n"
    L"hoAHhnFE7pOVSM5A3HqOYkeCRcaAWw24yhyATEGlolItqp8ZYLJH9RPaVuimKH73\n"
    L"VtSq1VXsQkN3RYshO7LYk2Cv1xkGe85CKUjj47sptRt1H6Dvbl+lZJaHIkw4uw6G\n"
    L"0zTaq76vxli4rNvdEQqpkPW9W+r6keBybODukAmZHriw\n"
    L"-----END CERTIFICATE-----\n";

// RSA of 1024 bits.
inline constexpr wchar_t kWeakCertificate[] =
    L"-----BEGIN CERTIFICATE-----\n"
    L"MIIB/DCCAWWgAwIBAgIUHaA90q6ly6bAyDxzxYBffptr7xgwDQYJKoZIhvcNAQEL\n"
    L"BQAwDzENMAsGA1UEAwwEV2VhazAgFw0yNjExMjAyMDMxNDRaGA8yMTI2MTAyNzIw\n"
    L"MzE0NFowDzENMAsGA1UEAwwEV2VhazCBnzANBgkqhkiG9w0BAQEFAAOBjQAwgYkC\n"
    L"gYEArG1KNXLo01LKk+E5Pe9Wn1ZBMp2xzt2fmvFsL5QI+8DIGGpk41YSw5Hdf10R\n"
    L"FQctbcinOdUgjmTQsXuyX83+1bs8PI6SgW2gQZPNEE/IMd9dOqHRTL3EKprBZzK7\n"
    L"q8xa2B2h9VoWlB77oBcZXhpxsQuIBJ6xtthQzwnYX4pjJPMCAwEAAaNTMFEwHQYD\n"
    L"VR0OBBYEFN3AKE0qcKw9NnzSk0NPUjM7ojBOMB8GA1UdIwQYMBaAFN3AKE0qcKw9\n"
    L"NnzSk0NPUjM7ojBOMA8GA1UdEwEB/wQFMAMBAf8wDQYJKoZIhvcNAQELBQADgYEA\n"
    L"oX1LsfY6pP1/OpEUvxyf6zcXma7+sMEGY9CJVWWLRXUg7HJ2Cjj9MsHileu5rfin\n"
    L"f8qGuX9VQXUdZji7ow8C9krPTzaTVTU3WTD9aIymT96RdKZAZoHc4BsBOqJ3Vjbr\n"
    L"ng76XZBnLIec8hhPz1AMz7faJlLUyfm8EGqsK5bWWtE=\n"
    L"-----END CERTIFICATE-----\n";

// An elliptic curve.
inline constexpr wchar_t kCurveCertificate[] =
    L"-----BEGIN CERTIFICATE-----\n"
    L"MIIBdzCCAR2gAwIBAgIUVpq/IEdU0dDuHKyl1SK90YSMlnAwCgYIKoZIzj0EAwIw\n"
    L"EDEOMAwGA1UEAwwFQ3VydmUwIBcNMjYxMTIwMjAzMTQ0WhgPMjEyNjEwMjcyMDMx\n"
    L"NDRaMBAxDjAMBgNVBAMMBUN1cnZlMFkwEwYHKoZIzj0CAQYIKoZIzj0DAQcDQgAE\n"
    L"ivYHsVIX4/Ula1oiYOfrTfbiwSg3ZxzRMGJatKmTOa+WiPioT/77kBS1RK4W3B2O\n"
    L"22lV33x9Hf8e7crDz6/B8aNTMFEwHQYDVR0OBBYEFL1fxpWwgtoc7ALPGd1M+naJ\n"
    L"NAVLMB8GA1UdIwQYMBaAFL1fxpWwgtoc7ALPGd1M+naJNAVLMA8GA1UdEwEB/wQF\n"
    L"MAMBAf8wCgYIKoZIzj0EAwIDSAAwRQIhALEwZlm+E+CZGybB77FKKILqnWFY2XLp\n"
    L"rRIWLsHrPmbEAiAOgSMegbiSJ0HmxrWOsC7cdYvczTuqvsB35S/dVChtUQ==\n"
    L"-----END CERTIFICATE-----\n";

// Valid until 2021.
inline constexpr wchar_t kExpiredCertificate[] =
    L"-----BEGIN CERTIFICATE-----\n"
    L"MIICmDCCAYACAQEwDQYJKoZIhvcNAQELBQAwEjEQMA4GA1UEAwwHZXhwaXJlZDAe\n"
    L"Fw0yMDAxMDEwMDAwMDBaFw0yMTAxMDEwMDAwMDBaMBIxEDAOBgNVBAMMB2V4cGly\n"
    L"ZWQwggEiMA0GCSqGSIb3DQEBAQUAA4IBDwAwggEKAoIBAQC7nrXLrTRR7CCtYlWI\n"
    L"GEJrEcPw05CDWEGcToebq10sNnoeNSax0nuy5dUUkgqxu3OK4oIBwgCDRMEM8tz/\n"
    L"kkKUDF1mCwNB+wABTwrp6wryK4Q2SurU0GSFrVKPAYMrPlTEOzKqq9bekP691kwV\n"
    L"L2IFXFc7o880iNF/xWfSEGQ4jOMmI1rD1ckIxyNYtXOCH9vy0z1eYtPMBLv8+84I\n"
    L"FER5P/v1CnmCwwNqrPETQEWSM6m/PjwyWZyKq7QAVcREXwuHmTL/uQeKYvvE7On6\n"
    L"l3qMsaOpwlB3CIZ5i0CuLwR0ZGmuZeeYk5qfG3MsyoRuVMeruyoptROIFDEer9wY\n"
    L"WK/jAgMBAAEwDQYJKoZIhvcNAQELBQADggEBAKK+H3NU3UTgxmkXw2NWN/XBTY2u\n"
    L"DRyDNGeCpb66GHcfEAR74Y0VHDARjXqQ266aXdogffc+hFyfS+TSgz7NK1DPBBbq\n"
    L"1WBLuRkq4+FeemWkqm3FGAhGXmifTsWwPVpxNlDuuE13hmJZplM7KRUs94+Vg3IY\n"
    L"jWeeW5vGjIsvGpkfOt2uqM9wIde1G4e2vVFrxBQ0Z2mU9pyc0946Swvvz3EGZBpz\n"
    L"R8clxOvYHoQDLWvSadPSEEpbaQI+wFpg3Lytg+dDdpWLdnrdWx463yoPq5OWLH6T\n"
    L"gk2dhT5n8LbgZRs9eDhnBllUuaFy5fJmIXmsUXL/YqGPllFCWNUhJ2+bGw8=\n"
    L"-----END CERTIFICATE-----\n";

// Valid from 2090.
inline constexpr wchar_t kFutureCertificate[] =
    L"-----BEGIN CERTIFICATE-----\n"
    L"MIICmjCCAYICAQEwDQYJKoZIhvcNAQELBQAwETEPMA0GA1UEAwwGZnV0dXJlMCIY\n"
    L"DzIwOTAwMTAxMDAwMDAwWhgPMjA5NTAxMDEwMDAwMDBaMBExDzANBgNVBAMMBmZ1\n"
    L"dHVyZTCCASIwDQYJKoZIhvcNAQEBBQADggEPADCCAQoCggEBALuetcutNFHsIK1i\n"
    L"VYgYQmsRw/DTkINYQZxOh5urXSw2eh41JrHSe7Ll1RSSCrG7c4riggHCAINEwQzy\n"
    L"3P+SQpQMXWYLA0H7AAFPCunrCvIrhDZK6tTQZIWtUo8Bgys+VMQ7Mqqr1t6Q/r3W\n"
    L"TBUvYgVcVzujzzSI0X/FZ9IQZDiM4yYjWsPVyQjHI1i1c4If2/LTPV5i08wEu/z7\n"
    L"zggURHk/+/UKeYLDA2qs8RNARZIzqb8+PDJZnIqrtABVxERfC4eZMv+5B4pi+8Ts\n"
    L"6fqXeoyxo6nCUHcIhnmLQK4vBHRkaa5l55iTmp8bcyzKhG5Ux6u7Kim1E4gUMR6v\n"
    L"3BhYr+MCAwEAATANBgkqhkiG9w0BAQsFAAOCAQEAVcaPy11yiLZwrOcRwROeJdCe\n"
    L"FITTciMXS3OUw2OOB9iPc6vGwVSzu2J4VRBS9RZjB2UaaL6tyYDu2+5cVh3YTyuE\n"
    L"lkEg2wFjdo01gz1nG2Q0lzNtWm/Iv9HLjKPEUQuQDZuCmpeLMAzuGnvwAWn6BUJz\n"
    L"kHqx+TrHc4SKH814+Jwf3uYrYnC2aHh7quDDa1yK9B7HruHp6atg5LxUteoF9fgw\n"
    L"Uduf7ecWyb7giYf9tzPq/kHbB0q0uPzDscam/TQX5fAjphQDmrviOYmPEGyLqMAm\n"
    L"W95y+3WJ/dLepQszkfjsU5jghYf4SoHtYx/CQE9waAtC9MRu6LvWyaJBc/GS9A==\n"
    L"-----END CERTIFICATE-----\n";

// The key text of the first one.
inline constexpr char kRecoveryKeyText[] =
    "sha256:296b21b2982a3c0b419d71efde301f87824c677596be3b14aaffb0e184bf98f8";

} // namespace obtest
