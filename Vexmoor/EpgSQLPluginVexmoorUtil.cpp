// The adapter's static object: its logger.
#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"

const Container::Logger adapterLogger = Container::Logger::logger("Vexmoor/EpgSQLPluginVexmoorUtil");
