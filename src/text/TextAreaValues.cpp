#include "text/TextArea.h"

// Until the host-control library is in place these yield what each value shows when its source cannot
// be read: the unspecified address, "N/A" or an empty text. The values with no host source at all are
// final.

namespace Kovo {

std::string TextArea::GetIpValue() { return "0.0.0.0"; }
std::string TextArea::GetSSLThumbprintValue() { return {}; }
std::string TextArea::GetSSHDsaKeyFingerprintValue() { return {}; }
std::string TextArea::GetSSHRsaKeyFingerprintValue() { return {}; }
std::string TextArea::GetSerialNumberValue() { return {}; }
std::string TextArea::GetHostnameValue() { return {}; }
std::string TextArea::GetQORProduct() { return {}; }
std::string TextArea::GetQORVersion() { return {}; }
std::string TextArea::GetSupportStart() { return "N/A"; }
std::string TextArea::GetSupportPeriod() { return "N/A"; }
std::string TextArea::GetSystemMemory() { return {}; }
std::string TextArea::GetServiceTag() { return "N/A"; }
std::string TextArea::GetAssetTag() { return {}; }
std::string TextArea::GetBIOSVersion() { return {}; }
std::string TextArea::GetBMCVersion() { return {}; }
std::string TextArea::GetCPLDVersion() { return "N/A"; }
std::string TextArea::GetPLSAVersion() { return {}; }

}  // namespace Kovo
