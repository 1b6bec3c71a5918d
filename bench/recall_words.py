# What pages of made-up sites are called in six languages: for each kind of page the texts of links, each with the word
# that stands in the path. Written down as sites of companies, societies, towns and universities name their pages.
WORDS = {
    "en": """
        home: Home=home
        contact: Contact=contact, Contact us=contact-us, Get in touch=get-in-touch, Find us=find-us, Talk to us=talk
        imprint: Legal notice=legal-notice, Imprint=imprint, Company information=company-information
        about: About us=about-us, About=about, Who we are=who-we-are, Our company=company, Our story=our-story
        team: Our team=our-team, Team=team, Meet the team=meet-the-team, The people=people, Crew=crew
        jobs: Careers=careers, Jobs=jobs, Work with us=work-with-us, Vacancies=vacancies
        privacy: Privacy policy=privacy-policy, Privacy=privacy, Data protection=data-protection
        terms: Terms and conditions=terms, Terms of service=tos
        press: Press=press, Media=media, Newsroom=newsroom
        news: News=news, Blog=blog, Latest=latest
        services: Services=services, What we do=what-we-do, Solutions=solutions
        products: Products=products, Shop=shop, Catalogue=catalogue
        references: Projects=projects, Portfolio=portfolio, Case studies=case-studies
        board: Board=board, Committee=committee, Officers=officers, Trustees=trustees
        groups: Sections=sections, Our teams=sections, Activities=activities
        membership: Membership=membership, Join us=join
        events: Events=events, Calendar=calendar, Diary=diary
        donate: Donate=donate, Support our work=give
        staff: Staff=staff, Staff directory=staff-directory, Directory=directory, People=people, Phone book=phonebook
        professors: Faculty=faculty, Professors=professors, Academics=academics
        research: Research groups=research-groups, Research=research, Labs=labs
        teaching: Teaching=teaching, Study=study, Courses=courses
        offices: Departments=departments, City offices=offices, Town hall=town-hall, Services A-Z=a-z
        council: Council=council, Councillors=councillors, Elected members=members
        docs: Documentation=docs, Manual=manual
        community: Community=community, Mailing lists=mailing-lists, Get involved=get-involved
        contributors: Contributors=contributors, Credits=credits, Maintainers=maintainers, Authors=authors
        security: Security=security, Report a vulnerability=security-policy
        support: Support=support, Help=help, Help centre=help-centre, Customer service=customer-service
        places: Locations=locations, Branches=branches, Our offices=our-offices, Where to find us=where
        chairs: Organizers=organizers, Committees=committees, Organising committee=organisation
        papers: Call for papers=cfp, Submissions=submissions
        registration: Registration=registration, Register=register
        program: Program=program, Schedule=schedule
        sponsors: Sponsors=sponsors, Partners=partners
        masthead: Masthead=masthead, Editorial team=editorial, Editors=editors
        teachers: Teaching staff=teaching-staff, Teachers=teachers, Staff list=staff-list
        secretariat: School office=school-office, Admissions=admissions
        gallery: Gallery=gallery, Photos=photos
        history: History=history
        faq: FAQ=faq, Questions=questions
        login: Log in=login, My account=account
        cart: Cart=cart, Basket=basket
        shipping: Delivery=delivery, Shipping and returns=shipping
        downloads: Downloads=downloads
        links: Links=links
        sitemap: Site map=sitemap
        newsletter: Newsletter=newsletter""",
    "de": """
        home: Startseite=start
        contact: Kontakt=kontakt, Kontakt & Anfahrt=kontakt-anfahrt, So finden Sie uns=anfahrt, Ihr Kontakt zu uns=kontakt
        imprint: Impressum=impressum, Impressum=impressum, Impressum & Datenschutz=impressum, Anbieterkennzeichnung=anbieter
        about: Über uns=ueber-uns, Wir über uns=wir-ueber-uns, Unternehmen=unternehmen, Wer wir sind=wer-wir-sind
        team: Team=team, Unser Team=unser-team, Mitarbeiter=mitarbeiter, Ansprechpartner=ansprechpartner, Wir=wir
        jobs: Karriere=karriere, Jobs=jobs, Stellenangebote=stellenangebote, Ausbildung=ausbildung
        privacy: Datenschutz=datenschutz, Datenschutzerklärung=datenschutzerklaerung
        terms: AGB=agb, Nutzungsbedingungen=nutzungsbedingungen
        press: Presse=presse, Medien=medien
        news: Aktuelles=aktuelles, Neuigkeiten=neuigkeiten, News=news
        services: Leistungen=leistungen, Angebot=angebot, Schwerpunkte=schwerpunkte
        products: Produkte=produkte, Sortiment=sortiment, Shop=shop
        references: Referenzen=referenzen, Projekte=projekte
        board: Vorstand=vorstand, Der Vorstand=vorstand, Präsidium=praesidium, Geschäftsstelle=geschaeftsstelle
        groups: Abteilungen=abteilungen, Sportarten=sportarten, Gruppen=gruppen
        membership: Mitgliedschaft=mitgliedschaft, Mitglied werden=mitglied-werden
        events: Termine=termine, Veranstaltungen=veranstaltungen
        donate: Spenden=spenden
        staff: Personen=personen, Mitarbeitende=mitarbeitende, Beschäftigte=beschaeftigte, Mitarbeiter A-Z=mitarbeiter-a-z
        professors: Professuren=professuren, Lehrstühle=lehrstuehle, Professoren=professoren
        research: Arbeitsgruppen=arbeitsgruppen, Forschung=forschung
        teaching: Studium=studium, Lehre=lehre
        offices: Rathaus=rathaus, Ämter=aemter, Verwaltung=verwaltung, Bürgerservice=buergerservice
        council: Gemeinderat=gemeinderat, Stadtrat=stadtrat, Politik=politik
        docs: Dokumentation=doku, Handbuch=handbuch
        community: Mitmachen=mitmachen, Mailinglisten=mailinglisten, Gemeinschaft=community
        contributors: Mitwirkende=mitwirkende, Entwickler=entwickler
        security: Sicherheit=sicherheit
        support: Hilfe=hilfe, Kundenservice=kundenservice, Service=service
        places: Standorte=standorte, Filialen=filialen, Niederlassungen=niederlassungen
        chairs: Organisation=organisation, Veranstalter=veranstalter
        papers: Beiträge einreichen=beitraege, Call for Papers=cfp
        registration: Anmeldung=anmeldung
        program: Programm=programm
        sponsors: Partner=partner, Sponsoren=sponsoren
        masthead: Redaktion=redaktion, Die Redaktion=redaktion
        teachers: Kollegium=kollegium, Lehrkräfte=lehrkraefte, Lehrer=lehrer
        secretariat: Sekretariat=sekretariat, Schulleitung=schulleitung
        gallery: Galerie=galerie, Bilder=bilder
        history: Geschichte=geschichte, Chronik=chronik
        faq: Häufige Fragen=faq
        login: Anmelden=login, Mein Konto=konto
        cart: Warenkorb=warenkorb
        shipping: Versand=versand, Widerruf=widerruf
        downloads: Downloads=downloads, Formulare=formulare
        links: Links=links
        sitemap: Inhaltsverzeichnis=sitemap
        newsletter: Newsletter=newsletter""",
    "fr": """
        home: Accueil=accueil
        contact: Contact=contact, Nous contacter=nous-contacter, Contactez-nous=contactez-nous, Coordonnées=coordonnees
        imprint: Mentions légales=mentions-legales, Informations légales=informations-legales
        about: À propos=a-propos, Qui sommes-nous ?=qui-sommes-nous, L’entreprise=entreprise, Présentation=presentation
        team: Notre équipe=equipe, L’équipe=equipe, Équipe=notre-equipe, Nos collaborateurs=collaborateurs
        jobs: Recrutement=recrutement, Nous rejoindre=nous-rejoindre, Carrières=carrieres
        privacy: Confidentialité=confidentialite, Données personnelles=donnees-personnelles
        terms: CGV=cgv
        press: Presse=presse, Espace presse=espace-presse
        news: Actualités=actualites, Blog=blog
        services: Services=services, Nos prestations=prestations, Métiers=metiers
        products: Produits=produits, Boutique=boutique
        references: Réalisations=realisations, Références=references
        board: Bureau=bureau, Conseil d’administration=conseil-administration, Le comité=comite
        groups: Sections=sections, Activités=activites
        membership: Adhésion=adhesion
        events: Agenda=agenda, Événements=evenements
        donate: Faire un don=don
        staff: Annuaire=annuaire, Personnel=personnel, Membres=membres
        professors: Enseignants-chercheurs=enseignants-chercheurs, Enseignants=enseignants
        research: Équipes de recherche=equipes, Recherche=recherche
        teaching: Formation=formation
        offices: Services municipaux=services-municipaux, Mairie=mairie, Vos services=vos-services
        council: Conseil municipal=conseil-municipal, Vos élus=elus
        docs: Documentation=doc
        community: Communauté=communaute, Participer=participer
        contributors: Contributeurs=contributeurs, Auteurs=auteurs
        security: Sécurité=securite
        support: Aide=aide, Service client=service-client
        places: Agences=agences, Nos magasins=magasins, Implantations=implantations
        chairs: Comités=comites, Organisation=organisation
        papers: Appel à communications=appel
        registration: Inscription=inscription
        program: Programme=programme
        sponsors: Partenaires=partenaires
        masthead: La rédaction=redaction, Ours=ours
        teachers: Équipe pédagogique=equipe-pedagogique, Professeurs=professeurs
        secretariat: Secrétariat=secretariat, Vie scolaire=vie-scolaire
        gallery: Galerie=galerie
        history: Histoire=histoire
        faq: FAQ=faq
        login: Connexion=connexion
        cart: Panier=panier
        shipping: Livraison=livraison
        downloads: Téléchargements=telechargements
        links: Liens=liens
        sitemap: Plan du site=plan-du-site
        newsletter: Lettre d’information=lettre""",
    "it": """
        home: Home=home
        contact: Contatti=contatti, Contattaci=contattaci, Dove siamo=dove-siamo
        imprint: Note legali=note-legali, Dati societari=dati-societari
        about: Chi siamo=chi-siamo, Azienda=azienda, La società=societa
        team: Il team=team, Staff=staff, Il nostro team=il-nostro-team, Persone=persone
        jobs: Lavora con noi=lavora-con-noi
        privacy: Privacy=privacy, Informativa privacy=informativa-privacy
        terms: Condizioni di vendita=condizioni
        press: Ufficio stampa=ufficio-stampa, Stampa=stampa
        news: Notizie=notizie, News=news
        services: Servizi=servizi, Cosa facciamo=cosa-facciamo
        products: Prodotti=prodotti, Negozio=negozio
        references: Realizzazioni=realizzazioni
        board: Consiglio direttivo=consiglio-direttivo, Direttivo=direttivo
        groups: Sezioni=sezioni, Attività=attivita
        membership: Iscrizione=iscrizione, Tesseramento=tesseramento
        events: Eventi=eventi
        donate: Sostienici=sostienici
        staff: Personale=personale, Rubrica=rubrica, Persone=persone
        professors: Docenti=docenti
        research: Gruppi di ricerca=gruppi, Ricerca=ricerca
        teaching: Didattica=didattica
        offices: Uffici=uffici, Aree amministrative=aree, Amministrazione=amministrazione
        council: Consiglio comunale=consiglio, Giunta=giunta
        docs: Documentazione=documentazione
        community: Comunità=comunita
        contributors: Autori=autori
        security: Sicurezza=sicurezza
        support: Assistenza=assistenza, Servizio clienti=servizio-clienti
        places: Sedi=sedi, Punti vendita=punti-vendita
        chairs: Comitato organizzatore=comitato
        papers: Invio contributi=contributi
        registration: Registrazione=registrazione
        program: Programma=programma
        sponsors: Partner=partner
        masthead: Redazione=redazione
        teachers: Docenti=docenti, Corpo docente=corpo-docente
        secretariat: Segreteria=segreteria
        gallery: Galleria=galleria
        history: Storia=storia
        faq: Domande frequenti=faq
        login: Accedi=login
        cart: Carrello=carrello
        shipping: Spedizioni=spedizioni
        downloads: Modulistica=modulistica
        links: Link utili=link
        sitemap: Mappa del sito=mappa
        newsletter: Newsletter=newsletter""",
    "es": """
        home: Inicio=inicio
        contact: Contacto=contacto, Contáctenos=contactenos, Dónde estamos=donde-estamos, Contacta=contacta
        imprint: Aviso legal=aviso-legal
        about: Quiénes somos=quienes-somos, Sobre nosotros=sobre-nosotros, Nosotros=nosotros, La empresa=empresa
        team: Equipo=equipo, Nuestro equipo=nuestro-equipo, Profesionales=profesionales
        jobs: Trabaja con nosotros=trabaja-con-nosotros, Empleo=empleo
        privacy: Política de privacidad=privacidad, Protección de datos=proteccion-de-datos
        terms: Condiciones de uso=condiciones
        press: Prensa=prensa, Sala de prensa=sala-de-prensa
        news: Noticias=noticias, Actualidad=actualidad
        services: Servicios=servicios
        products: Productos=productos, Tienda=tienda
        references: Proyectos=proyectos
        board: Junta directiva=junta-directiva, Directiva=directiva
        groups: Secciones=secciones, Actividades=actividades
        membership: Hazte socio=socios
        events: Agenda=agenda
        donate: Dona=dona
        staff: Personal=personal, Directorio=directorio, Personas=personas
        professors: Profesorado=profesorado
        research: Grupos de investigación=grupos, Investigación=investigacion
        teaching: Docencia=docencia
        offices: Ayuntamiento=ayuntamiento, Áreas municipales=areas, Servicios municipales=servicios-municipales
        council: Corporación municipal=corporacion, Concejales=concejales
        docs: Documentación=documentacion
        community: Comunidad=comunidad
        contributors: Autores=autores
        security: Seguridad=seguridad
        support: Ayuda=ayuda, Atención al cliente=atencion-al-cliente
        places: Oficinas=oficinas, Tiendas=tiendas, Delegaciones=delegaciones
        chairs: Comité organizador=comite
        papers: Envío de trabajos=envio
        registration: Inscripción=inscripcion
        program: Programa=programa
        sponsors: Patrocinadores=patrocinadores
        masthead: Redacción=redaccion
        teachers: Profesorado=profesorado, Claustro=claustro
        secretariat: Secretaría=secretaria
        gallery: Galería=galeria
        history: Historia=historia
        faq: Preguntas frecuentes=faq
        login: Acceso=acceso
        cart: Carrito=carrito
        shipping: Envíos=envios
        downloads: Descargas=descargas
        links: Enlaces=enlaces
        sitemap: Mapa web=mapa-web
        newsletter: Boletín=boletin""",
    "ja": """
        home: ホーム=home
        contact: お問い合わせ=contact, お問合せ=inquiry, お問い合わせ窓口=toiawase, ご相談=form
        imprint: 特定商取引法に基づく表記=law, 運営者情報=operator
        about: 会社概要=company, 会社案内=profile, 私たちについて=about, 企業情報=corporate
        team: スタッフ紹介=staff, 社員紹介=member, チーム=team
        jobs: 採用情報=recruit, 求人=saiyo
        privacy: プライバシーポリシー=privacy, 個人情報保護方針=kojin
        terms: 利用規約=terms
        press: プレスリリース=press, 報道関係の方へ=media
        news: お知らせ=news, 新着情報=info
        services: 事業内容=business, サービス=service
        products: 製品情報=products, 商品一覧=items
        references: 施工事例=works, 実績=results
        board: 役員紹介=officer, 役員一覧=yakuin
        groups: 活動紹介=activity, 支部=branch
        membership: 入会案内=nyukai
        events: イベント=event
        donate: ご寄付=kifu
        staff: 教職員一覧=staff, 職員=shokuin, メンバー=members
        professors: 教員紹介=faculty, 教員一覧=kyoin
        research: 研究室紹介=labs, 研究=research
        teaching: 教育=education
        offices: 各課の案内=section, 組織から探す=soshiki, 担当課一覧=tanto
        council: 市議会=gikai, 議員名簿=giin
        docs: ドキュメント=docs
        community: コミュニティ=community
        contributors: 開発者=developers
        security: セキュリティ=security
        support: サポート=support, ヘルプ=help
        places: 拠点一覧=base, 店舗案内=shops, アクセス=access
        chairs: 実行委員会=committee
        papers: 論文募集=cfp
        registration: 参加登録=registration
        program: プログラム=program
        sponsors: 協賛=sponsors
        masthead: 編集部=editorial
        teachers: 教職員紹介=teachers
        secretariat: 事務室=office, 事務局=jimukyoku
        gallery: ギャラリー=gallery
        history: 沿革=history
        faq: よくある質問=faq
        login: ログイン=login
        cart: カート=cart
        shipping: 送料について=shipping
        downloads: ダウンロード=download
        links: リンク集=link
        sitemap: サイトマップ=sitemap
        newsletter: メールマガジン=mailmag""",
}
# The local parts of addresses that belong to a page rather than to a person.
ROLES = {
    "en": "contact=info office hello enquiries; jobs=jobs careers hr; privacy=privacy dpo; press=press media; support=support help;"
          " security=security; sales=sales; registration=registration; secretariat=office admissions; events=events;"
          " membership=membership; donate=giving donations; papers=program-chairs submissions; sponsors=sponsors partners",
    "de": "contact=info kontakt post; jobs=bewerbung jobs karriere; privacy=datenschutz dsb; press=presse; support=service hilfe;"
          " security=sicherheit; sales=vertrieb verkauf; registration=anmeldung; secretariat=sekretariat; events=termine;"
          " membership=mitglieder; donate=spenden; papers=beitraege; sponsors=partner",
    "fr": "contact=contact accueil info; jobs=recrutement rh; privacy=dpo rgpd; press=presse communication; support=sav aide;"
          " security=securite; sales=commercial ventes; registration=inscription; secretariat=secretariat; events=agenda;"
          " membership=adhesions; donate=dons; papers=soumissions; sponsors=partenaires",
    "it": "contact=info segreteria; jobs=lavoro curriculum; privacy=privacy dpo; press=stampa; support=assistenza;"
          " security=sicurezza; sales=vendite commerciale; registration=registrazione; secretariat=segreteria; events=eventi;"
          " membership=soci; donate=donazioni; papers=contributi; sponsors=partner",
    "es": "contact=info contacto; jobs=empleo rrhh; privacy=privacidad dpd; press=prensa; support=atencion ayuda;"
          " security=seguridad; sales=ventas comercial; registration=inscripcion; secretariat=secretaria; events=agenda;"
          " membership=socios; donate=donaciones; papers=envios; sponsors=patrocinio",
    "ja": "contact=info otoiawase; jobs=recruit saiyo; privacy=privacy kojin; press=koho press; support=support;"
          " security=security; sales=eigyo; registration=entry; secretariat=jimu; events=event;"
          " membership=kaiin; donate=kifu; papers=ronbun; sponsors=kyosan",
}
NAMES = {
    "en": "james mary robert patricia john linda michael susan david karen emma oliver/smith jones taylor brown wilson evans"
          " walker wright hughes green hall wood clarke patel morgan",
    "de": "anna peter julia stefan maria thomas sabine michael katrin andreas lena jonas/mueller schmidt schneider fischer weber"
          " meyer wagner becker hoffmann schulz koch richter klein wolf",
    "fr": "marie jean nathalie pierre isabelle michel camille luc claire paul/martin bernard dubois thomas robert petit durand"
          " leroy moreau simon laurent lefebvre girard",
    "it": "giulia marco francesca luca paolo anna matteo chiara sara davide/rossi russo ferrari esposito bianchi romano colombo"
          " ricci marino greco bruno gallo conti",
    "es": "maria jose carmen antonio laura manuel lucia javier ana pablo/garcia gonzalez rodriguez fernandez lopez martinez"
          " sanchez perez gomez martin jimenez ruiz",
    "ja": "takashi yuki hiroshi akiko kenji naoko satoru emi daisuke mai/sato suzuki takahashi tanaka watanabe ito yamamoto"
          " nakamura kobayashi kato yoshida yamada",
}
FILLER = {
    "en": "we offer good work since many years for our guests and their families in town with care and pleasure every day",
    "de": "wir bieten gute arbeit seit vielen jahren mit freude und sorgfalt an jedem tag unsere kunden und ihre familien",
    "fr": "nous offrons un bon travail depuis des ans avec soin et plaisir chaque jour pour nos clients et leurs familles",
    "it": "offriamo un buon lavoro da anni con cura e piacere ogni giorno per i nostri ospiti e le loro famiglie",
    "es": "hacemos un buen trabajo desde hace mucho tiempo con gusto cada mes para nuestra gente y sus familias",
    "ja": "私たちは 長年 地域の 皆さまに よい 仕事を 毎日 心を こめて お届け して います",
}


# {language: {kind: [(text of the link, word in the path), ...]}}
def vocabulary():
    names = {}
    for language, text in WORDS.items():
        kinds = names[language] = {}
        for line in text.strip().splitlines():
            kind, variants = line.strip().split(": ", 1)
            kinds[kind] = [tuple(variant.rsplit("=", 1)) for variant in variants.split(", ")]
    return names


def roles():
    split = {language: (role.split("=") for role in text.split(";")) for language, text in ROLES.items()}
    return {language: {name.strip(): locals_.split() for name, locals_ in pairs} for language, pairs in split.items()}
