// Paths of the test set, compiled in; the environment overrides them for development and tests.
#include <cstdlib>

#include "wsa_p.h"

static const char* fromEnvironment(const char* name, const char* fallback)
{
    const char* value = std::getenv(name);
    return (value && *value) ? value : fallback;
}

const char* wsaEnginePath()
{
    return fromEnvironment("WSA_ENGINE_PATH", WSA_DEFAULT_ENGINE_PATH);
}

const char* wsaResultDir()
{
    return fromEnvironment("WSA_RESULT_DIR", WSA_DEFAULT_RESULT_DIR);
}

const char* wsaVendorInfoPath()
{
    return fromEnvironment("WSA_VENDOR_INFO", WSA_DEFAULT_VENDOR_INFO);
}
