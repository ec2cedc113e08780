#include <ovdoc/EntityClipboard.h>

namespace Doc {

void EntityClipboard::init()
{
}

void EntityClipboard::destruct()
{
}

} // namespace Doc
