// The unit's EEPROM service: MAC address of the test port and serial number of the set.
//
// On a desktop: the MAC address of the first non-loopback network interface (or the one named
// by WSA_NET_IF) and the system's serial number (DMI product serial, else the machine id).
// For tests: WSA_MAC_ADDRESS="00:1b:2c:a0:ff:09" gives that address, WSA_MAC_ADDRESS="" a
// failure; WSA_SERIAL_NUMBER="X123" gives that serial number, WSA_SERIAL_NUMBER="" a failure.
#ifndef PLATE2PROMSERV_H
#define PLATE2PROMSERV_H

namespace halmanager {

class PlatE2PromServ
{
public:
    PlatE2PromServ();
    virtual ~PlatE2PromServ();
    // Fills mac[0..5]; 0 on success, non-zero on failure.
    int ReadMacAddr(char* mac);
    // Fills sn with a NUL-terminated text of at most 31 characters; 0 on success.
    int ReadSN(char* sn);
};

} // namespace halmanager

#endif
