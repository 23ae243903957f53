#include <arch/ArchiveIn.h>

namespace arch
{

void ArchiveIn::get(char* bytes, unsigned int n)
{
    _file.read(bytes, n);
    _nBytes += n;
}

ArchiveIn& ArchiveIn::getValue(void* pValue, unsigned int nBytes)
{
    get(static_cast<char*>(pValue), nBytes);
    return *this;
}

} // namespace arch
