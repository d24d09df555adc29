// Certificates that were made for these tests; their private keys are gone. All but two are valid
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

// What the service calls the first.
inline constexpr char kRecoveryKeyText[] =
    "sha256:296b21b2982a3c0b419d71efde301f87824c677596be3b14aaffb0e184bf98f8";

} // namespace obtest
