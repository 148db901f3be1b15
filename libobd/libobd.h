#ifndef OBD_LIBOBD_H
#define OBD_LIBOBD_H

namespace Obd {

bool libInit();
void libCleanup();

} // namespace Obd

#endif
