#include <ovshape/FontPluginLoader.h>

namespace FontLibrary {

void FontPluginLoader::init()
{
}

void FontPluginLoader::destruct()
{
}

} // namespace FontLibrary
