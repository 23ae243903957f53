#include "Pinning.h"

#include <dlfcn.h>
#include <link.h>

#include <cstddef>

namespace test
{

void pinLoadedLibraries()
{
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void*)
        {
            if (info->dlpi_name != nullptr && *info->dlpi_name != '\0')
                dlopen(info->dlpi_name, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
            return 0;
        },
        nullptr);
}

} // namespace test
