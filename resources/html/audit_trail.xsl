<?xml version="1.0" encoding="UTF-8"?>
<!-- The audit trail as a report: one table per session, newest session last. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="UTF-8"/>
  <xsl:template match="/AuditTrail">
    <html>
      <head>
        <title>Audit Trail</title>
        <style type="text/css">
          body { font-family: sans-serif; font-size: 10pt; margin: 8px; }
          h1 { font-size: 14pt; color: #1f3f6f; }
          h2 { font-size: 11pt; color: #1f3f6f; margin-top: 16px; }
          table { border-collapse: collapse; width: 100%; }
          th { text-align: left; background: #dde6f2; padding: 3px 6px; }
          td { padding: 3px 6px; border-bottom: 1px solid #e4e4e4; vertical-align: top; }
          .info { color: #555555; }
        </style>
      </head>
      <body>
        <h1>Audit Trail<xsl:if test="@Project != ''"> of <xsl:value-of select="@Project"/></xsl:if></h1>
        <xsl:if test="not(Session)"><p class="info">No events have been logged.</p></xsl:if>
        <xsl:for-each select="Session">
          <h2>Session started <xsl:value-of select="translate(@Start, 'TZ', ' ')"/> by <xsl:value-of select="@User"/>
            <xsl:if test="@End"> (ended <xsl:value-of select="translate(@End, 'TZ', ' ')"/>)</xsl:if></h2>
          <xsl:if test="@ExtendedUserInfo != ''"><p class="info"><xsl:value-of select="@ExtendedUserInfo"/></p></xsl:if>
          <table>
            <tr><th>Time</th><th>User</th><th>Event</th><th>Detail</th></tr>
            <xsl:for-each select="Event">
              <tr>
                <td><xsl:value-of select="translate(@Time, 'TZ', ' ')"/></td>
                <td><xsl:value-of select="@User"/><xsl:if test="@ExtendedUserInfo != ''"><br/><span class="info"><xsl:value-of select="@ExtendedUserInfo"/></span></xsl:if></td>
                <td><xsl:value-of select="Title"/></td>
                <td><xsl:value-of select="Detail"/></td>
              </tr>
            </xsl:for-each>
          </table>
        </xsl:for-each>
      </body>
    </html>
  </xsl:template>
</xsl:stylesheet>
