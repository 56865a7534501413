#include "zuCore/IkCameraDriver.h"

IkCamera::~IkCamera() = default;

IkCameraDriver::~IkCameraDriver() = default;
