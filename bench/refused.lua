-- For wrk: GetDeviceInformation without credentials, which is refused with a challenge, one after the other with 2 ms between.
wrk.method = "POST"
wrk.headers["Content-Type"] = "application/soap+xml; charset=utf-8"
wrk.body = '<?xml version="1.0" encoding="UTF-8"?><s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope">' ..
    '<s:Body><GetDeviceInformation xmlns="http://www.onvif.org/ver10/device/wsdl"/></s:Body></s:Envelope>'

function delay()
    return 2
end
