no equals here

SSP_spark.sql.x=1
http.header.X-Y=
KrbRealm=  blanks  
HDFSUser=Jürgen
