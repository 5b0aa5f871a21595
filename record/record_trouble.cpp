#include "record/record_trouble.h"

namespace marvolen {

const char* TroubleText(RecordTrouble trouble) {
    switch (trouble) {
        case RecordTrouble::None:
            return "";
        case RecordTrouble::InUse:
            return "The record file is in use by another program or channel";
        case RecordTrouble::CannotOpen:
            return "The record file can't be opened";
        case RecordTrouble::NoSpace:
            return "There is no space left for the record file";
        case RecordTrouble::WriteFailed:
            return "The record file can't be written";
        case RecordTrouble::BadMaximum:
            return "The maximum size of the record file is too small";
    }
    return "";
}

}  // namespace marvolen
