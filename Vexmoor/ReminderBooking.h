// What booking a programme and booking by hand have in common.
#pragma once

#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"
#include "Vexmoor/HeapText.h"
#include "host/CRemindInfo.h"
#include "host/CReminder.h"

/// What a request's "force" asks for where its booking overlaps another.
enum Force { KeepConflict = 0, ReplaceConflict = 1, CheckOverlap = 2 };

/// Makes room for an entry: what it overlaps is deleted. False when that is to be kept, which is logged.
/// `conflict` receives the entry in the way.
inline bool makeRoom(CReminder& store, const CRemindInfo& entry, int force, CRemindInfo& conflict) {
    if (!store.ExistSameTimeRemindItem(entry, conflict)) return true;
    if (force == KeepConflict) {
        adapterLogger.error("=== Remind Duplicated. Confliction ===");
        return false;
    }
    store.DeleteRemindItemByUid(conflict.UID());
    adapterLogger.debug("=== Remind Duplicated. Previous is removed (%ld) ===", conflict.UID());
    return true;
}

/// Gives a record the identifier of its stored entry.
inline void replaceId(ws_epg_schedule& record, CRemindInfo& entry) {
    const HeapText previous(record.id);
    record.id = t_get_schedule_id(&entry);
}
