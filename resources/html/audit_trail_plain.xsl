<?xml version="1.0" encoding="UTF-8"?>
<!-- The audit trail for browsers without style rules: plain lists, no tables. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="UTF-8"/>
  <xsl:template match="/AuditTrail">
    <html>
      <head><title>Audit Trail</title></head>
      <body>
        <h3>Audit Trail <xsl:value-of select="@Project"/></h3>
        <xsl:for-each select="Session">
          <p><b>Session <xsl:value-of select="@Start"/>, <xsl:value-of select="@User"/></b></p>
          <ul>
            <xsl:for-each select="Event">
              <li><xsl:value-of select="@Time"/> - <xsl:value-of select="@User"/>: <xsl:value-of select="Title"/>
                <xsl:if test="Detail != ''"> (<xsl:value-of select="Detail"/>)</xsl:if></li>
            </xsl:for-each>
          </ul>
        </xsl:for-each>
      </body>
    </html>
  </xsl:template>
</xsl:stylesheet>
