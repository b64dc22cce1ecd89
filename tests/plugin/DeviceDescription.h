// A device description with all that is looked for.
#pragma once

namespace epgtest {

constexpr const char* wholeDescription = R"(<?xml version="1.0"?>
<root>
 <device>
  <friendlyName>Living room</friendlyName>
  <manufacturer>Maker</manufacturer>
  <manufacturerURL>http://maker.example/</manufacturerURL>
  <modelDescription>A set</modelDescription>
  <modelName>Model</modelName>
  <modelNumber>1.0</modelNumber>
  <modelURL>http://maker.example/model</modelURL>
  <serialNumber>0001</serialNumber>
  <UDN>uuid:1234</UDN>
  <qel:deviceID>D1</qel:deviceID>
  <qel:ProductCap>P1</qel:ProductCap>
 </device>
</root>
)";

/// The members that come out of it.
constexpr const char* wholeMembers =
    R"({"friendlyName":"Living room","manufacturer":"Maker","manufacturerURL":"http://maker.example/",)"
    R"("modelDescription":"A set","modelName":"Model","modelNumber":"1.0",)"
    R"("modelURL":"http://maker.example/model","serialNumber":"0001","uuid":"1234","qel_deviceID":"D1",)"
    R"("qel_ProductCap":"P1"})";

}  // namespace epgtest
