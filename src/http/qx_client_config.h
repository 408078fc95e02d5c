// SPDX-License-Identifier: MIT
#ifndef ORB_HTTP_QX_CLIENT_CONFIG_H_
#define ORB_HTTP_QX_CLIENT_CONFIG_H_

#include <cstdint>

namespace orb {

/// The settings with which a client talks to a server. Setters copy text; the text that a
/// getter gives belongs to the configuration until the same setting is set again.
class QXClientConfig {
 public:
  virtual void setTimeoutSec(uint64_t timeoutSec) = 0;
  virtual uint64_t getTimeoutSec() const = 0;
  virtual void setResponseSizeLimit(uint32_t limitBytes) = 0;
  virtual uint32_t getResponseSizeLimit() const = 0;
  virtual void setClientCertFile(const char* file) = 0;
  virtual const char* getClientCertFile() const = 0;
  virtual void setClientPrivateKeyFile(const char* file) = 0;
  virtual const char* getClientPrivateKeyFile() const = 0;
  virtual void setClientPrivateKeyPassword(const char* password) = 0;
  virtual const char* getClientPrivateKeyPassword() const = 0;
  virtual void setServerCertFile(const char* file) = 0;
  virtual const char* getServerCertFile() const = 0;
  virtual void setCRLFile(const char* file) = 0;
  virtual const char* getCRLFile() const = 0;
  virtual void setVerifyHost(bool verify) = 0;
  virtual bool getVerifyHost() const = 0;
  virtual void setVerifyPeer(bool verify) = 0;
  virtual bool getVerifyPeer() const = 0;
  virtual ~QXClientConfig() = default;
};

}  // namespace orb

#endif  // ORB_HTTP_QX_CLIENT_CONFIG_H_
