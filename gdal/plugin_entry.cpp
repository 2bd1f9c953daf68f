// What GDAL calls when it loads the plugin: the name follows from the file's name, ogr_VKM.so.

#include "driver.h"

extern "C" __attribute__((visibility("default"))) void RegisterOGRVKM();

void RegisterOGRVKM() {
    vemrado::gdal::RegisterDriver();
}
