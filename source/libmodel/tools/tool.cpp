#include "libmodel/tools/tool.h"

namespace Model {

Tool::Tool(Type type, QObject *parent) : QObject(parent), m_type(type)
{
}

} // namespace Model
